#pragma once

#include "documents/report/machine_parts.h"

#include <string>

namespace documents {

// Appends the disks with their maps and tables.
void AppendDisks(std::string& page, const Machine& machine, const MachineParts& parts);

}  // namespace documents
