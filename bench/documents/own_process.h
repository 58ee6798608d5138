#pragma once

#include "bench/timing.h"

namespace bench {

// Runs `work` once in a process of its own and returns the time of the work alone, in seconds. Throws
// std::runtime_error if the work throws (its text is printed) or the process cannot be made.
//
// A command reads its documents in a new process. In one that has parsed before, parsing is a third faster,
// because the freed memory needs no new pages; what a command keeps needs them all the same.
double SecondsInOwnProcess(const Work& work);

}  // namespace bench
