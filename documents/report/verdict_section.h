#pragma once

#include "documents/report/page_data.h"
#include "documents/report/verdicts.h"

namespace documents {

// The look and the word of a verdict.
PageData WordOf(const Verdict& verdict);

// The tables of a check: disks, volumes, and the selected volumes if there are any.
PageData VerdictTablesOf(const Verdicts& verdicts);

}  // namespace documents
