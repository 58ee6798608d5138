#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

// What `orvane check --json` printed of the machine. Texts are UTF-8.
struct Reason {
    std::string code;  // "R003"; empty: it has none
    std::string text;
};

struct Verdict {
    std::optional<bool> can_backup;  // none: could not be judged
    std::vector<Reason> reasons;     // why not
};

struct DiskVerdict {
    std::uint32_t number = 0;
    Verdict verdict;
};

struct VolumeVerdict {
    std::string path;  // the volume GUID path; empty: it has none
    std::string device;
    std::vector<std::string> mount_points;
    Verdict verdict;
};

struct SelectedVerdict {
    std::string volume;  // as it was given to the check
    Verdict verdict;
};

struct Verdicts {
    // None: they could not be listed.
    std::optional<std::vector<DiskVerdict>> disks;
    std::optional<std::vector<VolumeVerdict>> volumes;
    std::vector<SelectedVerdict> selected;
};

// Throws ReadError if the text is no such JSON; its place is "byte 7" or a JSON pointer, "/volumes/2/id".
Verdicts ReadVerdicts(std::string_view json);

}  // namespace documents
