#pragma once

#include "documents/plan/table.h"
#include "documents/plan/target.h"
#include "documents/verify/verify.h"

#include <optional>
#include <vector>

namespace documents {

// A disk that is planned. Refers to the document.
struct DiskPlan {
    const Disk* disk = nullptr;
    std::optional<Finding> obstacle;  // why there is no script
    Table table;                      // without an obstacle
    Target target;
};

}  // namespace documents
