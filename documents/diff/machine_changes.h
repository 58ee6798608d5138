#pragma once

#include "documents/diff/change.h"
#include "documents/diff/fields.h"
#include "documents/model/machine.h"

#include <vector>

namespace documents::diff {

// The values of the system sections and of BootConfig.
std::vector<Change> CompareFacts(const Machine& before, const Machine& after, const CompareRules& rules);

}  // namespace documents::diff
