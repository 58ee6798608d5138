#pragma once

#include "documents/diff/compare.h"
#include "documents/model/machine.h"

#include <functional>
#include <string>
#include <vector>

namespace documents::diff {

inline constexpr std::uint64_t kMiB = 1024 * 1024;
inline constexpr std::uint64_t kGiB = 1024 * kMiB;

inline constexpr const char* kBasicData = "{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}";
inline constexpr const char* kEfiSystem = "{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}";

// A document of format 2. Disk 0 (MBR, 0x00000A00, 100 GiB) has the active boot partition of 500 MiB at 1 MiB
// and C: of 80 GiB at 501 MiB. Disk 1 (GPT, {DISK-1}, 200 GiB) has {PART-A} of 50 GiB at 1 MiB with D:,
// {PART-B} of 60 GiB at 60 GiB with E:. The volumes are "boot", "c", "d" and "e" with the serial numbers 1
// to 4.
Machine TwoDisks();

// The same machine as format 3 tells it: the GPT disk without identifier and partitions; folders.
Machine TwoDisksInFormat3();

// "disk renumbered 0x00000A00", a line for each change.
using Told = std::vector<std::string>;
Told Tell(const Machine& before, const Machine& after, bool all = false);

// What changes a machine, and what is told of it then.
struct Story {
    const char* name;
    std::function<void(Machine& machine)> change;
    Told told;
};

// Expects that the story and nothing else is told of the machine, and of the reverse nothing less.
void ExpectStory(const Story& story, const Machine& before);

}  // namespace documents::diff
