#pragma once

#include <cstddef>
#include <string>

namespace faults {

inline constexpr unsigned kHungExitCode = 86;
inline constexpr unsigned kCrashedExitCode = 87;

// From now on a crash, or a case that takes longer than `seconds`, ends the process with one of these exit
// codes and a line that names the case: "CRASH <index> <name>" or "HANG <index> <name>".
void WatchCases(unsigned seconds);

// Marks a case as running for its lifetime.
class WatchedCase {
public:
    WatchedCase(const std::string& name, std::size_t index);
    ~WatchedCase();
    WatchedCase(const WatchedCase&) = delete;
    WatchedCase& operator=(const WatchedCase&) = delete;
};

}  // namespace faults
