#include "machine/simulation/device_controls.h"

#include "machine/simulation/disk_structures.h"
#include "machine/simulation/simulation.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace machine {
namespace {

constexpr DWORD kNoSuchDevice = 433;  // ERROR_NO_SUCH_DEVICE, which older headers lack

using DiskControl = Answer (*)(Disk&, const ControlRequest&);

Answer DriveGeometryEx(Disk& disk, const ControlRequest& request) {
    // The driver truncates the result to the buffer, which must hold at least the geometry and the size.
    if (request.output_size < offsetof(DISK_GEOMETRY_EX, Data)) {
        return Answer::Failure(ERROR_INSUFFICIENT_BUFFER);
    }
    Bytes bytes = DriveGeometryExBytes(disk);
    bytes.resize(std::min({bytes.size(), request.output_size, std::size_t{disk.geometry_bytes}}));
    return Answer::Success(std::move(bytes));
}

Answer DriveLayout(Disk& disk, const ControlRequest& request) {
    if (disk.offline) {
        return Answer::Failure(ERROR_NOT_READY);
    }
    if (disk.style != PARTITION_STYLE_MBR || disk.blank) {
        return Answer::Failure(ERROR_INVALID_FUNCTION);
    }
    return BytesOrTooSmall(DriveLayoutBytes(disk), request);
}

Answer PartitionInfo(Disk& disk, const ControlRequest& request) {
    if (disk.style == PARTITION_STYLE_GPT) {
        return Answer::Failure(ERROR_INVALID_FUNCTION);
    }
    return BytesOrTooSmall(PartitionBytes(WholeDisk(disk)), request);
}

Answer LengthInfo(std::uint64_t length, const ControlRequest& request) {
    GET_LENGTH_INFORMATION information{};
    information.Length.QuadPart = static_cast<LONGLONG>(length);
    return BytesOrTooSmall(BytesOf(information), request);
}

Answer DeviceNumber(const StorageNumber& described, const ControlRequest& request) {
    STORAGE_DEVICE_NUMBER number{};
    number.DeviceType = described.type;
    number.DeviceNumber = described.number;
    number.PartitionNumber = described.partition;
    return BytesOrTooSmall(BytesOf(number), request);
}

struct DiskControlRow {
    DWORD code;
    DiskControl answer;
};

const DiskControlRow kDiskControls[] = {
    {IOCTL_DISK_GET_DRIVE_GEOMETRY,
     [](Disk& disk, const ControlRequest& request) {
         return BytesOrTooSmall(DriveGeometryBytes(disk), request);
     }},
    {IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, DriveGeometryEx},
    {IOCTL_DISK_GET_DRIVE_LAYOUT, DriveLayout},
    {IOCTL_DISK_GET_DRIVE_LAYOUT_EX,
     [](Disk& disk, const ControlRequest& request) {
         return BytesOrTooSmall(DriveLayoutExBytes(disk), request);
     }},
    {IOCTL_DISK_GET_LENGTH_INFO,
     [](Disk& disk, const ControlRequest& request) { return LengthInfo(disk.size, request); }},
    {IOCTL_DISK_GET_PARTITION_INFO, PartitionInfo},
    {IOCTL_DISK_GET_PARTITION_INFO_EX,
     [](Disk& disk, const ControlRequest& request) {
         return BytesOrTooSmall(PartitionExBytes(WholeDisk(disk)), request);
     }},
    {IOCTL_STORAGE_GET_DEVICE_NUMBER,
     [](Disk& disk, const ControlRequest& request) {
         return DeviceNumber({FILE_DEVICE_DISK, disk.index, 0}, request);
     }},
    {IOCTL_DISK_IS_WRITABLE, [](Disk&, const ControlRequest&) { return Answer{}; }},
    {IOCTL_DISK_UPDATE_PROPERTIES, [](Disk& disk, const ControlRequest&) { return UpdateProperties(disk); }},
    {IOCTL_DISK_SET_DRIVE_LAYOUT_EX, SetDriveLayout},
    {IOCTL_DISK_CREATE_DISK, CreateDisk},
    {IOCTL_DISK_DELETE_DRIVE_LAYOUT,
     [](Disk& disk, const ControlRequest&) { return DeleteDriveLayout(disk); }},
};

// Returns the header with the full count and the first `given` extents.
Answer ExtentList(const std::vector<Extent>& extents, std::size_t given) {
    VOLUME_DISK_EXTENTS header{};
    header.NumberOfDiskExtents = static_cast<DWORD>(extents.size());
    Bytes list = BytesOf(header);
    list.resize(offsetof(VOLUME_DISK_EXTENTS, Extents));
    for (std::size_t i = 0; i < given; ++i) {
        DISK_EXTENT extent{};
        extent.DiskNumber = extents[i].disk;
        extent.StartingOffset.QuadPart = static_cast<LONGLONG>(extents[i].offset);
        extent.ExtentLength.QuadPart = static_cast<LONGLONG>(extents[i].length);
        const Bytes bytes = BytesOf(extent);
        list.insert(list.end(), bytes.begin(), bytes.end());
    }
    return Answer::Success(std::move(list));
}

Answer DiskExtents(const Volume& volume, const ControlRequest& request) {
    if (!volume.extents) {
        return Answer::Failure(ERROR_INVALID_FUNCTION);
    }
    // The structure includes one extent.
    if (request.output_size < sizeof(VOLUME_DISK_EXTENTS)) {
        return Answer::Failure(ERROR_INVALID_PARAMETER);
    }
    const std::size_t count = volume.extents->size();
    const std::size_t room =
        (request.output_size - offsetof(VOLUME_DISK_EXTENTS, Extents)) / sizeof(DISK_EXTENT);
    if (room >= count) {
        return ExtentList(*volume.extents, count);
    }
    Answer answer;
    if (volume.short_extents != ShortExtents::kNone) {
        answer = ExtentList(*volume.extents, volume.short_extents == ShortExtents::kFitting ? room : 1);
    }
    answer.failed = true;
    answer.error = volume.extents_short_error.value_or(ERROR_MORE_DATA);
    return answer;
}

Answer VolumePartition(const Volume& volume, const ControlRequest& request, bool extended) {
    if (!volume.partition || (!extended && volume.partition->style == PARTITION_STYLE_GPT)) {
        return Answer::Failure(ERROR_INVALID_FUNCTION);
    }
    return BytesOrTooSmall(extended ? PartitionExBytes(*volume.partition) : PartitionBytes(*volume.partition),
                           request);
}

Answer VolumeNumber(const Volume& volume, const ControlRequest& request) {
    const auto number = volume.storage_number ? volume.storage_number : UsualStorageNumber(volume);
    return number ? DeviceNumber(*number, request) : Answer::Failure(ERROR_INVALID_FUNCTION);
}

// A volume with exactly one extent forwards geometry and layout controls to its disk.
Answer PassToDisk(Simulation& simulation, const Volume& volume, const ControlRequest& request) {
    constexpr DWORD kPassed[] = {IOCTL_DISK_GET_DRIVE_GEOMETRY, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX,
                                 IOCTL_DISK_GET_DRIVE_LAYOUT, IOCTL_DISK_GET_DRIVE_LAYOUT_EX};
    const bool passed = std::find(std::begin(kPassed), std::end(kPassed), request.code) != std::end(kPassed);
    if (!passed || !volume.extents || volume.extents->size() != 1) {
        return Answer::Failure(ERROR_INVALID_FUNCTION);
    }
    Disk* disk = simulation.FindDisk(volume.extents->front().disk);
    return disk == nullptr ? Answer::Failure(kNoSuchDevice) : AnswerDiskControl(*disk, request);
}

}  // namespace

Answer BytesOrTooSmall(Bytes bytes, const ControlRequest& request) {
    return request.output_size < bytes.size() ? Answer::Failure(ERROR_INSUFFICIENT_BUFFER)
                                              : Answer::Success(std::move(bytes));
}

std::optional<StorageNumber> UsualStorageNumber(const Volume& volume) {
    if (!volume.partition || !volume.extents || volume.extents->size() != 1) {
        return std::nullopt;
    }
    return StorageNumber{FILE_DEVICE_DISK, volume.extents->front().disk, volume.partition->number};
}

Answer AnswerDiskControl(Disk& disk, const ControlRequest& request) {
    const auto* row =
        std::find_if(std::begin(kDiskControls), std::end(kDiskControls),
                     [&](const DiskControlRow& candidate) { return candidate.code == request.code; });
    return row == std::end(kDiskControls) ? Answer::Failure(ERROR_INVALID_FUNCTION)
                                          : row->answer(disk, request);
}

Answer AnswerVolumeControl(Simulation& simulation, const Volume& volume, const ControlRequest& request) {
    switch (request.code) {
        case IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS:
            return DiskExtents(volume, request);
        case IOCTL_DISK_GET_LENGTH_INFO:
            return volume.has_media ? LengthInfo(volume.length, request) : Answer::Failure(ERROR_NOT_READY);
        case IOCTL_DISK_GET_PARTITION_INFO:
            return VolumePartition(volume, request, false);
        case IOCTL_DISK_GET_PARTITION_INFO_EX:
            return VolumePartition(volume, request, true);
        case IOCTL_STORAGE_GET_DEVICE_NUMBER:
            return VolumeNumber(volume, request);
        default:
            return PassToDisk(simulation, volume, request);
    }
}

bool MayControl(DWORD code, std::uint32_t access) {
    // Bits 14 and 15 of a control code hold the access that it requires.
    const std::uint32_t demanded = (code >> 14) & (FILE_READ_ACCESS | FILE_WRITE_ACCESS);
    return (demanded & ~access) == 0;
}

Answer AnswerControl(Simulation& simulation, const OpenObject& object, const ControlRequest& request) {
    if (!MayControl(request.code, request.access)) {
        return Answer::Failure(ERROR_ACCESS_DENIED);
    }
    if (object.kind == OpenObject::Kind::kDisk) {
        Disk* disk = simulation.FindDisk(object.disk);
        return disk == nullptr ? Answer::Failure(kNoSuchDevice) : AnswerDiskControl(*disk, request);
    }
    if (object.kind == OpenObject::Kind::kVolume) {
        const Volume* volume = simulation.FindVolume(object.device);
        return volume == nullptr ? Answer::Failure(kNoSuchDevice)
                                 : AnswerVolumeControl(simulation, *volume, request);
    }
    return Answer::Failure(ERROR_INVALID_FUNCTION);
}

}  // namespace machine
