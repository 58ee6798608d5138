#pragma once

namespace recordings {

// While one lives, every larger block that this program allocates with `new` ends at a guard page, so that
// access past its end is a crash. Only for code of one thread.
class GuardedBlocks {
public:
    GuardedBlocks();
    ~GuardedBlocks();
    GuardedBlocks(const GuardedBlocks&) = delete;
    GuardedBlocks& operator=(const GuardedBlocks&) = delete;
};

}  // namespace recordings
