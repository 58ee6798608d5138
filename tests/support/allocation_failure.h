#pragma once

#include <cstddef>

namespace support {

// During its lifetime, allocations of at least this many bytes throw std::bad_alloc, in the test program and
// in the libraries linked into it. A program that uses this class gets a replaced operator new. One at a
// time.
class AllocationFailure {
public:
    explicit AllocationFailure(std::size_t smallest_failing);
    // The next `allowed` allocations succeed, whatever their size; all later ones fail.
    static AllocationFailure After(std::size_t allowed);
    ~AllocationFailure();

    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    // The number of allocations that failed because of this object.
    std::size_t hits() const noexcept;

private:
    AllocationFailure(std::size_t smallest_failing, std::size_t allowed);
};

}  // namespace support
