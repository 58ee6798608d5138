#pragma once

#include "documents/model/machine.h"
#include "documents/report/verdicts.h"
#include "documents/verify/verify.h"

#include <string>
#include <vector>

namespace documents {

struct ReportInput {
    const Machine& machine;
    std::string document;                // its name, as the page shows it
    std::vector<Finding> findings;       // of verify
    const Verdicts* verdicts = nullptr;  // of a check; null: none was given
};

// The page as HTML in UTF-8. It needs nothing besides itself, and the same input always gives the same bytes.
std::string ReportPage(const ReportInput& input);

}  // namespace documents
