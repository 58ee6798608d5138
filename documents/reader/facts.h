#pragma once

#include "documents/model/machine.h"
#include "documents/reader/row.h"

#include <string_view>

namespace documents {

// Whether the element is one of the sections of facts: Processor, ComputerSystem, BootConfiguration, OS and
// BootConfig.
bool IsFactSection(std::string_view name);

// Adds the facts of a section to the machine. Throws ReadError.
void TakeFacts(Machine& machine, std::string_view section, Row& row);

}  // namespace documents
