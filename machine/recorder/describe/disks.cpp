#include "machine/description/control_codes.h"
#include "machine/description/partition_table.h"
#include "machine/description/tables.h"
#include "machine/description/text.h"
#include "machine/recorder/describe/control_calls.h"
#include "machine/recorder/describe/disk_table.h"
#include "machine/recorder/describe/facts.h"
#include "machine/recorder/observe/answer_bytes.h"
#include "machine/recorder/observe/answer_texts.h"

#include <algorithm>
#include <optional>

namespace recorder {
namespace {

constexpr std::wstring_view kDevices = L"\\\\.\\";
constexpr std::wstring_view kDiskPath = L"\\\\.\\PhysicalDrive";

template <class Enum>
std::uint32_t NumberIn(const Enum& place) {
    std::uint32_t number = 0;
    static_assert(sizeof(place) == sizeof(number));
    std::memcpy(&number, &place, sizeof(number));
    return number;
}

void TakeGeometry(const DISK_GEOMETRY& geometry, machine::Disk& disk) {
    disk.cylinders = static_cast<std::uint64_t>(geometry.Cylinders.QuadPart);
    disk.media_type = NumberIn(geometry.MediaType);
    disk.tracks_per_cylinder = geometry.TracksPerCylinder;
    disk.sectors_per_track = geometry.SectorsPerTrack;
    // Other sizes cannot be described.
    constexpr std::uint32_t kSizes[] = {512, 1024, 2048, 4096};
    const bool possible =
        std::find(std::begin(kSizes), std::end(kSizes), geometry.BytesPerSector) != std::end(kSizes);
    disk.bytes_per_sector = possible ? geometry.BytesPerSector : kSizes[0];
}

// The ends of the extents on a disk whose size nothing tells.
std::uint64_t EndOfExtents(const Observations& observations, std::uint32_t index) {
    std::uint64_t end = 0;
    for (const std::wstring& object : observations.ObjectsOf(kExtents)) {
        const Bytes* bytes = observations.BytesOf(kExtents, object);
        for (const DISK_EXTENT& extent : bytes == nullptr ? std::vector<DISK_EXTENT>() : ExtentsIn(*bytes)) {
            if (extent.DiskNumber == index) {
                end = std::max(end, static_cast<std::uint64_t>(extent.StartingOffset.QuadPart) +
                                        static_cast<std::uint64_t>(extent.ExtentLength.QuadPart));
            }
        }
    }
    return end;
}

// The size of a disk whose extended geometry is not told.
std::uint64_t SizeWithoutGeometry(const Observations& observations, const std::wstring& path,
                                  std::uint32_t index) {
    if (const auto size = RecordIn<std::uint64_t>(observations.BytesOf(kLength, path))) {
        return *size;
    }
    // Partition 0 is the whole disk.
    const auto whole =
        PartitionIn(observations.BytesOf(kPartitionEx, path), observations.BytesOf(kPartition, path));
    return whole ? whole->length : EndOfExtents(observations, index);
}

void DescribePartitionInfo(const DISK_PARTITION_INFO& partition, machine::Disk& disk) {
    disk.blank = partition.SizeOfPartitionInfo == 0;
    disk.style = NumberIn(partition.PartitionStyle);
    if (disk.style == PARTITION_STYLE_MBR) {
        disk.signature = partition.Mbr.Signature;
        disk.checksum = partition.Mbr.CheckSum;
    } else if (disk.style == PARTITION_STYLE_GPT) {
        disk.disk_id = partition.Gpt.DiskId;
    }
}

void DescribeFullGeometry(const Bytes& bytes, machine::Disk& disk) {
    disk.geometry_bytes =
        static_cast<std::uint32_t>(std::min(bytes.size(), std::size_t{disk.geometry_bytes}));
    disk.size = RecordAt<std::uint64_t>(bytes, offsetof(DISK_GEOMETRY_EX, DiskSize)).value_or(0);
    if (const auto partition = PartitionInfoIn(bytes)) {
        DescribePartitionInfo(*partition, disk);
    }
    if (const auto detection = DetectionInfoIn(bytes)) {
        disk.detection_type = NumberIn(detection->DetectionType);
        disk.int13 = detection->Int13;
        disk.ex_int13 = detection->ExInt13;
    }
}

// As many whole cylinders as fit the size, for a disk that does not tell them.
std::uint64_t UsualCylinders(const machine::Disk& disk) {
    const std::uint64_t cylinder =
        std::uint64_t{disk.tracks_per_cylinder} * disk.sectors_per_track * disk.bytes_per_sector;
    return cylinder == 0 ? 0 : disk.size / cylinder;
}

void DescribeGeometry(const Observations& observations, const std::wstring& path, machine::Disk& disk) {
    const Bytes* full = observations.BytesOf(kGeometryEx, path);
    auto geometry = RecordIn<DISK_GEOMETRY>(full);
    if (!geometry) {
        geometry = RecordIn<DISK_GEOMETRY>(observations.BytesOf(kGeometry, path));
    }
    if (geometry) {
        TakeGeometry(*geometry, disk);
    }
    if (full == nullptr) {
        disk.size = SizeWithoutGeometry(observations, path, disk.index);
    } else {
        DescribeFullGeometry(*full, disk);
    }
    disk.size = std::min(disk.size, kMostBytes);
    if (!geometry) {
        disk.cylinders = UsualCylinders(disk);
    }
}

// Whether every used entry is recognised, though not every type would be.
bool RecognizesAll(const machine::Disk& disk) {
    const auto agrees = [&](bool all) {
        machine::Disk numbered = disk;
        numbered.recognizes_all = all;
        machine::NumberMbrEntries(numbered);
        return std::equal(disk.partitions.begin(), disk.partitions.end(), numbered.partitions.begin(),
                          [](const machine::Partition& left, const machine::Partition& right) {
                              return left.recognized == right.recognized;
                          });
    };
    return disk.style == PARTITION_STYLE_MBR && !agrees(false) && agrees(true);
}

// What is larger cannot be described.
void LimitNumbers(machine::Disk& disk) {
    for (std::uint64_t* bytes : {&disk.starting_usable_offset, &disk.usable_length}) {
        *bytes = std::min(*bytes, kMostBytes);
    }
    for (machine::Partition& partition : disk.partitions) {
        partition.offset = std::min(partition.offset, kMostBytes);
        partition.length = std::min(partition.length, kMostBytes);
    }
}

std::wstring DeviceOf(const Observations& observations, std::uint32_t index) {
    const auto targets =
        AnsweredTexts(observations, "QueryDosDeviceW", L"PhysicalDrive" + std::to_wstring(index));
    const bool device = !targets.empty() && machine::StartsWith(targets.front(), L"\\Device\\") &&
                        !targets.front().ends_with(L'\\');
    return device ? targets.front() : machine::rows::UsualDiskDevice(index);
}

machine::Disk DescribedDisk(const Observations& observations, std::uint32_t index) {
    const std::wstring path = std::wstring(kDiskPath) + std::to_wstring(index);
    machine::Disk disk;
    disk.index = index;
    disk.device = DeviceOf(observations, index);
    DescribeGeometry(observations, path, disk);
    DescribeTable(observations, path, disk);
    disk.open_for_reading_error = ReadError(observations, path);
    LimitNumbers(disk);
    disk.recognizes_all = RecognizesAll(disk);
    const Observation* older = observations.Best(kLayout, path);
    disk.offline = older != nullptr && older->answer.error == ERROR_NOT_READY;
    return disk;
}

// The numbers of WMI's drives, in their order, that belong to a disk.
std::vector<std::uint32_t> WmiOrder(const Observations& observations) {
    std::vector<std::uint32_t> order;
    const Observation* drives = observations.Best("IWbemServices::ExecQuery", L"Win32_DiskDrive");
    for (const Part& part : drives == nullptr ? std::vector<Part>() : drives->answer.parts) {
        if (machine::EqualNames(part.name, L"Index")) {
            order.push_back(static_cast<std::uint32_t>(part.value));
        }
    }
    return order;
}

// Whether a disk has this number: not only a drive of WMI that has no disk.
bool Exists(const Observations& observations, const std::wstring& path) {
    const Observation* name = observations.Best("QueryDosDeviceW", path.substr(kDevices.size()));
    const auto openings = observations.Find("CreateFileW", path);
    return (name != nullptr && name->answer.succeeded()) ||
           std::any_of(openings.begin(), openings.end(), [](const Observation* opening) {
               return opening->answer.error != ERROR_FILE_NOT_FOUND;
           });
}

}  // namespace

std::uint32_t ReadError(const Observations& observations, const std::wstring& path) {
    std::uint32_t error = 0;
    bool opens = false;
    for (const Observation* opening : observations.Find("CreateFileW", path)) {
        const Answer& answer = opening->answer;
        opens = opens || (opening->question.access == 0 && answer.succeeded());
        if (opening->question.access != 0 && !answer.crashed) {
            error = answer.blocks ? machine::BlockedCode("CreateFileW") : answer.error;
        }
    }
    return opens ? error : 0;
}

std::vector<machine::Disk> DescribedDisks(const Observations& observations) {
    std::vector<std::uint32_t> found;
    for (const std::wstring& path : observations.ObjectsOf("CreateFileW")) {
        if (machine::StartsWith(path, kDiskPath) && Exists(observations, path)) {
            found.push_back(static_cast<std::uint32_t>(std::stoul(path.substr(kDiskPath.size()))));
        }
    }
    std::vector<machine::Disk> disks;
    const auto add = [&](std::uint32_t index) {
        const auto waiting = std::find(found.begin(), found.end(), index);
        if (waiting != found.end()) {
            found.erase(waiting);
            disks.push_back(DescribedDisk(observations, index));
        }
    };
    for (const std::uint32_t index : WmiOrder(observations)) {
        add(index);
    }
    while (!found.empty()) {
        add(found.front());
    }
    return disks;
}

}  // namespace recorder
