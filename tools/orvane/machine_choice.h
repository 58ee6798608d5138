#pragma once

#include "machine/description.h"

#include <filesystem>
#include <optional>

namespace host {

// The machine that a capture describes: that of the file; without one, none on Windows, where the live
// machine is described, and a workstation under Wine. Throws machine::DescriptionError.
std::optional<machine::Description> ChooseMachine(const std::optional<std::filesystem::path>& file);

}  // namespace host
