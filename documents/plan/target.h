#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

namespace documents {

// What the user says about the target of a disk.
struct TargetRequest {
    std::optional<std::string> path;           // an image, or on Linux a block device
    std::optional<std::uint64_t> size;         // bytes; of a target that is not there to be looked at
    std::optional<std::uint32_t> sector_size;  // bytes; of an image, or with `size`
};
using TargetRequests = std::map<std::uint32_t, TargetRequest>;  // by disk

// What is known of a target. It is never written.
struct Target {
    std::optional<std::string> path;
    std::optional<std::uint64_t> size;
    std::optional<std::uint32_t> sector_size;  // none: that of the document
    bool blank = true;                         // the first and the last MiB are zero
};

// what() is a sentence, UTF-8.
class TargetError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Looks at the target. Throws TargetError if that is impossible.
Target LookAt(const TargetRequest& request);

// What the system says of a device. Throws TargetError if the user says other sectors.
void SetDeviceFacts(Target& target, std::uint64_t size, std::uint32_t sector_size);

// Whether both are the same file or the same device.
bool SameTarget(const Target& one, const Target& other);

// "/dev/sdb, 320072933376 bytes", "none is chosen"
std::string TextOf(const Target& target);

}  // namespace documents
