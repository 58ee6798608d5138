#include "documents/diff/disk_identity.h"

#include "documents/diff/pairing.h"
#include "documents/model/lookup.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

namespace documents::diff {

namespace {

enum Basis { kById, kBySignature, kByContent, kByTable, kBySizeAndNumber, kBySizeAndEmptyTable, kByNumber };

// By the basis; empty: no guess.
constexpr std::string_view kGuesses[] = {
    "", "", "what lies on it", "size and partitions", "size and number", "size and partitions", "number",
};

bool IsNamed(const Disk& disk) {
    return disk.id || disk.signature;
}

std::string NumberOf(const Disk& disk) {
    return std::to_string(disk.number);
}

std::optional<std::string> TableOf(const Disk& disk) {
    if (!disk.size) {
        return std::nullopt;
    }
    std::string key = std::to_string(*disk.size);
    key += disk.style ? " style " + std::to_string(static_cast<int>(*disk.style)) : " unknown";
    for (const Partition* partition : PartitionsByOffset(disk)) {
        key += ' ' + std::to_string(partition->place.start) + '+' + std::to_string(partition->place.length);
    }
    return key;
}

// What identifies the disk by what lies on it: its GPT partitions, and volumes together with their offsets.
std::vector<std::string> ContentOf(const Disk& disk, const ExtentsByDisk& extents) {
    std::vector<std::string> keys;
    if (disk.partitions) {
        for (const Partition& partition : *disk.partitions) {
            if (partition.id) {
                keys.push_back(*partition.id + '@' + std::to_string(partition.place.start));
            }
        }
    }
    for (const PlacedExtent& placed : extents.On(disk.number)) {
        const std::string place = '@' + std::to_string(placed.extent->place.start);
        if (placed.volume->path) {
            keys.push_back(*placed.volume->path + place);
        }
        if (placed.volume->serial.value_or(0) != 0) {
            keys.push_back(std::to_string(*placed.volume->serial) + place);
        }
    }
    return keys;
}

// Which disks may be the same although nothing identifies them.
bool MayHaveSameContent(const Disk& before, const Disk& after) {
    return !IsNamed(before) || !IsNamed(after) || (before.size && before.size == after.size);
}

bool OneIsNameless(const Disk& before, const Disk& after) {
    return !IsNamed(before) || !IsNamed(after);
}

bool MayHaveBeenConverted(const Disk& before, const Disk& after) {
    return OneIsNameless(before, after) || before.style != after.style;
}

bool OneIsUnreadable(const Disk& before, const Disk& after) {
    return !before.size || !after.size;
}

// A pass over the disks in which no member of a pair has a key of its own.
struct DiskPass {
    std::optional<std::string> (*key)(const Disk& disk);
    bool (*allowed)(const Disk& before, const Disk& after);  // null: always
    Basis basis;
};

constexpr DiskPass kIdentities[] = {
    {[](const Disk& disk) { return disk.id; }, nullptr, kById},
    {[](const Disk& disk) {
         return disk.signature ? std::optional(std::to_string(*disk.signature)) : std::nullopt;
     },
     nullptr, kBySignature},
};

constexpr DiskPass kGuessPasses[] = {
    {[](const Disk& disk) {
         return disk.partitions && !disk.partitions->empty() ? TableOf(disk) : std::nullopt;
     },
     OneIsNameless, kByTable},
    {[](const Disk& disk) {
         return disk.size ? std::optional(std::to_string(*disk.size) + '#' + NumberOf(disk)) : std::nullopt;
     },
     MayHaveBeenConverted, kBySizeAndNumber},
    {TableOf, OneIsNameless, kBySizeAndEmptyTable},
    {[](const Disk& disk) { return std::optional(NumberOf(disk)); }, OneIsUnreadable, kByNumber},
};

void RunPass(Pairing& pairing, const DiskPass& pass, const std::vector<Disk>& before,
             const std::vector<Disk>& after) {
    pairing.Run({[&](std::size_t index) { return pass.key(before[index]); },
                 [&](std::size_t index) { return pass.key(after[index]); },
                 [&](std::size_t index) { return NumberOf(before[index]); },
                 [&](std::size_t index) { return NumberOf(after[index]); },
                 [&](std::size_t one, std::size_t other) {
                     return pass.allowed == nullptr || pass.allowed(before[one], after[other]);
                 }},
                pass.basis);
}

// The disks of the newer document, by what lies on them.
class Contents {
public:
    explicit Contents(const Machine& machine) : machine_(machine) {
        const ExtentsByDisk extents(machine);
        for (std::size_t index = 0; index < machine.disks.size(); ++index) {
            for (const std::string& key : ContentOf(machine.disks[index], extents)) {
                std::vector<std::size_t>& disks = disks_with_[key];
                if (disks.size() < kMostWithKey) {
                    disks.push_back(index);
                }
            }
        }
    }

    // The free disk that shares most of `keys` with `disk`; among several the one with its number, else the
    // first.
    std::optional<std::size_t> BestPartner(const Disk& disk, const std::vector<std::string>& keys,
                                           const Pairing& pairing) const {
        std::map<std::size_t, std::pair<std::size_t, bool>> shared;  // how many; whether it has the number
        for (const std::string& key : keys) {
            const auto found = disks_with_.find(key);
            if (found == disks_with_.end()) {
                continue;
            }
            for (const std::size_t index : found->second) {
                const Disk& other = machine_.disks[index];
                if (!pairing.BeforeOf(index) && MayHaveSameContent(disk, other)) {
                    ++shared[index].first;
                    shared[index].second = other.number == disk.number;
                }
            }
        }
        const auto best =
            std::max_element(shared.begin(), shared.end(),
                             [](const auto& one, const auto& other) { return one.second < other.second; });
        return best == shared.end() ? std::nullopt : std::optional(best->first);
    }

private:
    // What lies on more disks does not tell them apart.
    static constexpr std::size_t kMostWithKey = 100;

    const Machine& machine_;
    std::unordered_map<std::string, std::vector<std::size_t>> disks_with_;
};

void PairByContent(Pairing& pairing, const Machine& before, const Machine& after) {
    const ExtentsByDisk extents(before);
    const Contents contents(after);
    for (std::size_t index = 0; index < before.disks.size(); ++index) {
        if (pairing.AfterOf(index)) {
            continue;
        }
        const Disk& disk = before.disks[index];
        if (const auto partner = contents.BestPartner(disk, ContentOf(disk, extents), pairing)) {
            pairing.Pair(index, *partner, kByContent);
        }
    }
}

}  // namespace

DiskPairs::DiskPairs(const Machine& before, const Machine& after) : before_(before), after_(after) {
    Pairing pairing(before.disks.size(), after.disks.size());
    for (const DiskPass& pass : kIdentities) {
        RunPass(pairing, pass, before.disks, after.disks);
    }
    PairByContent(pairing, before, after);
    for (const DiskPass& pass : kGuessPasses) {
        RunPass(pairing, pass, before.disks, after.disks);
    }
    for (std::size_t index = 0; index < before.disks.size(); ++index) {
        if (const std::optional<std::size_t> partner = pairing.AfterOf(index)) {
            pair_of_after_.emplace(after.disks[*partner].number, pairs_.size());
            pairs_.push_back({&before.disks[index], &after.disks[*partner],
                              kGuesses[static_cast<std::size_t>(pairing.BasisOf(index))]});
        }
    }
}

const DiskPair* DiskPairs::OfBefore(std::uint32_t number) const {
    const auto found = std::lower_bound(
        pairs_.begin(), pairs_.end(), number,
        [](const DiskPair& pair, std::uint32_t wanted) { return pair.before->number < wanted; });
    return found == pairs_.end() || found->before->number != number ? nullptr : &*found;
}

const DiskPair* DiskPairs::OfAfter(std::uint32_t number) const {
    const auto found = pair_of_after_.find(number);
    return found == pair_of_after_.end() ? nullptr : &pairs_[found->second];
}

std::string DiskPairs::KeyOfBefore(std::uint32_t number) const {
    const bool known = FindDisk(before_, number) != nullptr;
    return (OfBefore(number) != nullptr ? "same " : known ? "old " : "unknown ") + std::to_string(number);
}

std::string DiskPairs::KeyOfAfter(std::uint32_t number) const {
    if (const DiskPair* const pair = OfAfter(number)) {
        return "same " + std::to_string(pair->before->number);
    }
    const bool known = FindDisk(after_, number) != nullptr;
    return (known ? "new " : "unknown ") + std::to_string(number);
}

}  // namespace documents::diff
