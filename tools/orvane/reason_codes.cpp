#include "tools/orvane/reason_codes.h"

#include <algorithm>

namespace host {

namespace {

constexpr ReasonCode kReasons[] = {
    {"R001", "This not a fixed disk, type is ", "", "the volume is on no fixed disk"},
    {"R002", "Extent is on disk ", " but we don't have such disk.",
     "the volume lies on a disk that is not there"},
    {"R003", "Failed to get drive type", "", "the type of the volume's drive is unknown"},
    {"R004", "Failed to get device name", "", "the volume has no device"},
    {"R005", "Failed to standardize device name", "", "the name of the volume's device cannot be used"},
    {"R006", "Failed to get mount points", "", "the mount points of the volume are unknown"},
    {"R007", "Failed to get volume information", "", "the file system of the volume cannot be read"},
    {"R008", "Failed to get disk free space ex", "", "the free space of the volume is unknown"},
    {"R009", "Failed to get disk free space", "", "the cluster size of the volume is unknown"},
    {"R010", "Failed to open volume", "", "the volume cannot be opened"},
    {"R011", "Failed to get volume partition size", "", "the size of the volume is unknown"},
    {"R012", "Failed to GetVolumeDiskExtents", "", "the place of the volume is unknown"},
    {"R013", "Failed to open hard disk ", " error: ", "the disk cannot be opened"},
    {"R014", "Failed to GetDriveGeometryEx for disk ", " error: ", "the size of the disk cannot be read"},
    {"R015", "Failed to get drive ", " layout information error: ", "the partition table cannot be read"},
    {"R016", "Unknown disk partition style ", "", "the disk has no partition table that is known"},
    {"R017", "Partitions are not ", " on disk ", "the partition table has changed during the capture"},
    {"R018", "All partitions are marked as unused entry", "", "the partition table is empty"},
    {"R019", "Partition is marked as unused entry", "", "a partition is not in use"},
    {"R020", "Can't backup partition of type ", "", "a partition has a type that is not backed up"},
    {"R021", "Backup cannot proceed. Failed to find any information about volume ", "",
     "the selected volume is not there"},
    {"R000", "", "", "another reason"},
};

}  // namespace

std::span<const ReasonCode> ReasonCodes() {
    return kReasons;
}

std::string_view CodeOf(std::string_view sentence) {
    sentence.remove_prefix(std::min(sentence.find_first_not_of(' '), sentence.size()));
    // The last row fits everything.
    return std::find_if(std::begin(kReasons), std::end(kReasons),
                        [&](const ReasonCode& reason) {
                            return sentence.starts_with(reason.beginning) &&
                                   sentence.find(reason.part) != std::string_view::npos;
                        })
        ->code;
}

}  // namespace host
