#pragma once

#include "documents/model/machine.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Which disks of two documents are the same.
namespace documents::diff {

struct DiskPair {
    const Disk* before = nullptr;
    const Disk* after = nullptr;
    std::string_view guess;  // what the guess rests on; empty: it is none
};

class DiskPairs {
public:
    // Refers to the machines, which must outlive it.
    DiskPairs(const Machine& before, const Machine& after);

    // In the order of `before`, without those that have no partner.
    const std::vector<DiskPair>& pairs() const { return pairs_; }
    const DiskPair* OfBefore(std::uint32_t number) const;
    const DiskPair* OfAfter(std::uint32_t number) const;

    // A text that is the same for two disks if they are the same disk. A disk that neither document has is
    // known by its number.
    std::string KeyOfBefore(std::uint32_t number) const;
    std::string KeyOfAfter(std::uint32_t number) const;

private:
    const Machine& before_;
    const Machine& after_;
    std::vector<DiskPair> pairs_;
    std::map<std::uint32_t, std::size_t> pair_of_after_;  // by number
};

}  // namespace documents::diff
