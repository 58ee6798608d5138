#pragma once

#include "machine/recorder/observe/observations.h"
#include "machine/recorder/prove/proof.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

inline constexpr std::uint32_t kLibraryRunLimit = 5 * 60 * 1000;  // milliseconds

// Runs the library on the recorded machine (none: the system) and on its description: all formats with
// nothing and with every listed volume selected, all dumps, and the check. Each run has a process of its own.
// Compares the outputs line by line. A run that takes longer than `limit` (milliseconds) is ended and is a
// finding, explained if a question of the recording did not come back either. `shown` makes of a differing
// line what its finding shows. Throws std::runtime_error if a
// process cannot be started.
std::vector<recorder::Finding> CompareLibraryRuns(const recorder::Observations& observations,
                                                  const std::optional<std::filesystem::path>& machine,
                                                  const std::filesystem::path& description,
                                                  const recorder::ShownLine& shown,
                                                  const std::function<void(const std::string&)>& progress,
                                                  std::uint32_t limit = kLibraryRunLimit);

}  // namespace host
