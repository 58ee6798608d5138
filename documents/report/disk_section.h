#pragma once

#include "documents/report/machine_parts.h"
#include "documents/report/page_data.h"

namespace documents {

// The disks with their maps and tables.
PageData DisksOf(const Machine& machine, const MachineParts& parts);

}  // namespace documents
