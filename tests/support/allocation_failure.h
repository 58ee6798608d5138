#pragma once

#include <cstddef>

namespace support {

// While it lives, allocations of this size in bytes and more throw std::bad_alloc, in the test program and
// the libraries linked into it. A program that uses it gets an operator new of its own. One at a time.
class AllocationFailure {
public:
    explicit AllocationFailure(std::size_t smallest_failing);
    // The next `allowed` allocations of whatever size succeed, all after them fail.
    static AllocationFailure After(std::size_t allowed);
    ~AllocationFailure();

    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    // How many allocations it has made to fail.
    std::size_t hits() const noexcept;

private:
    AllocationFailure(std::size_t smallest_failing, std::size_t allowed);
};

}  // namespace support
