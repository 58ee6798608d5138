#pragma once

#include <cstddef>
#include <string>

namespace faults {

inline constexpr unsigned kHungExitCode = 86;
inline constexpr unsigned kCrashedExitCode = 87;

// From now on a crash, or a case that takes longer than `seconds`, ends the process with its own exit code
// and a line that names the case: "CRASH <index> <name>", "HANG <index> <name>".
void WatchCases(unsigned seconds);

// The case that runs, for the life of the object.
class WatchedCase {
public:
    WatchedCase(const std::string& name, std::size_t index);
    ~WatchedCase();
    WatchedCase(const WatchedCase&) = delete;
    WatchedCase& operator=(const WatchedCase&) = delete;
};

}  // namespace faults
