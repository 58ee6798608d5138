#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The library's judgement of one thing. All texts here are UTF-8.
struct Verdict {
    bool can_backup = false;
    std::vector<std::string> reasons;  // why not

    bool operator==(const Verdict&) const = default;
};

struct DiskVerdict {
    std::uint32_t index = 0;
    std::string size;  // for people: "476.94 GB"; empty where the disk does not tell it
    Verdict verdict;

    bool operator==(const DiskVerdict&) const = default;
};

struct VolumeVerdict {
    std::string id;  // GUID path; empty for a volume without a GUID
    std::string device;
    std::vector<std::string> mount_points;
    Verdict verdict;

    bool operator==(const VolumeVerdict&) const = default;
};

struct SelectedVerdict {
    std::string volume;              // as it was given
    std::optional<Verdict> verdict;  // none: it could not be judged

    bool operator==(const SelectedVerdict&) const = default;
};

// What stands for a text that the library could not deliver: its log knows the letters of the C runtime's
// locale only.
inline constexpr const char* kLostText = "?";

// Everything that a check found. None where the disks or the volumes could not be listed.
struct CheckReport {
    std::optional<std::vector<DiskVerdict>> disks;
    std::optional<std::vector<VolumeVerdict>> volumes;
    std::vector<SelectedVerdict> selected;
};

}  // namespace host
