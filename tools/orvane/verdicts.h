#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The result of the library's backup check for one disk or volume. All strings in this file are UTF-8.
struct Verdict {
    bool can_backup = false;
    std::vector<std::string> reasons;  // why not

    bool operator==(const Verdict&) const = default;
};

struct DiskVerdict {
    std::uint32_t index = 0;
    std::string size;  // human-readable, "476.94 GB"; empty if the dump has none
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
    std::string volume;              // as given on the command line
    std::optional<Verdict> verdict;  // none: the check failed

    bool operator==(const SelectedVerdict&) const = default;
};

// Replaces a string that the library's log could not express in the C runtime's locale.
inline constexpr const char* kLostText = "?";

// The result of a check. `disks` or `volumes` is none if they could not be listed.
struct CheckReport {
    std::optional<std::vector<DiskVerdict>> disks;
    std::optional<std::vector<VolumeVerdict>> volumes;
    std::vector<SelectedVerdict> selected;
};

}  // namespace host
