#include "common/platform/storage_queries.h"

#include "common/text/decimal_text.h"
#include "common/text/multi_string.h"

#include <array>
#include <cwchar>

namespace win {

namespace {

// A buffer for one name. Callers may tell the system a smaller size.
using NameBuffer = std::array<wchar_t, kNameCharacters>;

// For a list of names.
using ListBuffer = std::vector<wchar_t>;

DWORD SizeOf(const ListBuffer& buffer) {
    return static_cast<DWORD>(buffer.size());
}

std::wstring TextOf(const NameBuffer& buffer) {
    return {buffer.data(), wcsnlen(buffer.data(), buffer.size())};
}

// Splits an answer of `returned` characters into its entries. Returns ERROR_INVALID_DATA if the buffer is
// smaller than that.
DWORD TakeEntries(const ListBuffer& buffer, std::size_t returned, std::vector<std::wstring>& entries) {
    if (returned > buffer.size()) {
        return ERROR_INVALID_DATA;
    }
    entries = SplitMultiString(buffer.data(), returned);
    return ERROR_SUCCESS;
}

}  // namespace

std::wstring PhysicalDriveName(std::uint32_t disk_number) {
    return L"\\\\.\\PhysicalDrive" + DecimalText(disk_number);
}

DWORD OpenDevice(const std::wstring& path, const FileOpening& opening, UniqueFile& file) {
    file.Reset(CallBound(Kernel32DLL::Get().CreateFileW, HANDLE{INVALID_HANDLE_VALUE}, path.c_str(),
                         opening.access, opening.share_mode, nullptr, opening.disposition, opening.flags,
                         HANDLE{nullptr}));
    return file ? static_cast<DWORD>(ERROR_SUCCESS) : LastFailure();
}

DWORD ReadDriveGeometry(const UniqueFile& drive, DISK_GEOMETRY& geometry) {
    return ReadFixedControl(drive, IOCTL_DISK_GET_DRIVE_GEOMETRY, geometry);
}

DWORD ReadDriveGeometryEx(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer) {
    return ReadGrowingControl(drive, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, growth, buffer, IsWholeGeometry);
}

DWORD ReadDriveLayout(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer) {
    return ReadGrowingControl(drive, IOCTL_DISK_GET_DRIVE_LAYOUT, growth, buffer, IsWholeLegacyLayout);
}

DWORD ReadDriveLayoutEx(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer) {
    return ReadGrowingControl(drive, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, growth, buffer, IsWholeLayoutEx);
}

DWORD ReadLength(const UniqueFile& device, std::int64_t& length) {
    GET_LENGTH_INFORMATION information{};
    const DWORD error = ReadFixedControl(device, IOCTL_DISK_GET_LENGTH_INFO, information);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    if (information.Length.QuadPart < 0) {
        return ERROR_INVALID_DATA;
    }
    length = information.Length.QuadPart;
    return ERROR_SUCCESS;
}

DWORD ReadPartitionInformation(const UniqueFile& volume, PARTITION_INFORMATION& partition) {
    return ReadFixedControl(volume, IOCTL_DISK_GET_PARTITION_INFO, partition);
}

DWORD ReadVolumeExtents(const UniqueFile& volume, const Growth& growth, ByteBuffer& buffer) {
    return ReadGrowingControl(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, growth, buffer,
                              IsWholeExtentList);
}

const DRIVE_LAYOUT_INFORMATION_EX& LayoutExIn(const ByteBuffer& buffer) {
    return *reinterpret_cast<const DRIVE_LAYOUT_INFORMATION_EX*>(buffer.data());
}

std::span<const PARTITION_INFORMATION> ClassicPartitionsIn(const ByteBuffer& layout) {
    const auto& list = *reinterpret_cast<const DRIVE_LAYOUT_INFORMATION*>(layout.data());
    return {list.PartitionEntry, list.PartitionCount};
}

std::span<const PARTITION_INFORMATION_EX> PartitionsIn(const DRIVE_LAYOUT_INFORMATION_EX& layout) {
    return {layout.PartitionEntry, layout.PartitionCount};
}

std::span<const DISK_EXTENT> ExtentsIn(const ByteBuffer& buffer) {
    const auto& list = *reinterpret_cast<const VOLUME_DISK_EXTENTS*>(buffer.data());
    return {list.Extents, list.NumberOfDiskExtents};
}

DWORD ReadDriveType(const std::wstring& root, UINT& type) {
    SetLastError(ERROR_SUCCESS);  // clears a stale error: the function does not report why a type is unknown
    type = CallBound(Kernel32DLL::Get().GetDriveTypeW, UINT{DRIVE_UNKNOWN}, root.c_str());
    return ErrorUnless(type != DRIVE_UNKNOWN);
}

DWORD ReadDiskFreeSpace(const std::wstring& root, DiskFreeSpace& space) {
    DiskFreeSpace read;
    const DWORD error = ErrorUnless(CallBound(Kernel32DLL::Get().GetDiskFreeSpaceW, FALSE, root.c_str(),
                                              &read.sectors_per_cluster, &read.bytes_per_sector,
                                              &read.free_clusters, &read.total_clusters));
    if (error == ERROR_SUCCESS) {
        space = read;
    }
    return error;
}

DWORD ReadDiskFreeSpaceEx(const std::wstring& root, DiskFreeSpaceEx& space) {
    ULARGE_INTEGER available{};
    ULARGE_INTEGER total{};
    ULARGE_INTEGER total_free{};
    const DWORD error = ErrorUnless(CallBound(Kernel32DLL::Get().GetDiskFreeSpaceExW, FALSE, root.c_str(),
                                              &available, &total, &total_free));
    if (error == ERROR_SUCCESS) {
        space = {available.QuadPart, total.QuadPart, total_free.QuadPart};
    }
    return error;
}

DWORD ReadVolumeInformation(const std::wstring& root, DWORD name_characters, VolumeInformation& information) {
    NameBuffer label{};
    NameBuffer file_system{};
    VolumeInformation read;
    const DWORD error =
        ErrorUnless(CallBound(Kernel32DLL::Get().GetVolumeInformationW, FALSE, root.c_str(), label.data(),
                              name_characters, &read.serial_number, &read.maximum_component_length,
                              &read.file_system_flags, file_system.data(), name_characters));
    if (error == ERROR_SUCCESS) {
        read.label = TextOf(label);
        read.file_system = TextOf(file_system);
        information = std::move(read);
    }
    return error;
}

DWORD ListMountPaths(const std::wstring& volume, std::size_t first_characters, Retry retry,
                     std::vector<std::wstring>& paths) {
    ListBuffer buffer;
    DWORD length = 0;
    const auto ask = [&](ListBuffer& answer, std::size_t& needed) {
        length = 0;
        const DWORD error = ErrorUnless(CallBound(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW, FALSE,
                                                  volume.c_str(), answer.data(), SizeOf(answer), &length));
        needed = length;
        return error;
    };
    DWORD error = ERROR_SUCCESS;
    if (retry == Retry::kNever) {
        std::size_t needed = 0;
        buffer.assign(first_characters, L'\0');
        error = ask(buffer, needed);
    } else {
        error = GrowAndRetry(buffer, first_characters, static_cast<DWORD>(ERROR_MORE_DATA), ask);
    }
    return error == ERROR_SUCCESS ? TakeEntries(buffer, length, paths) : error;
}

DWORD ListDosDeviceTargets(const wchar_t* device, std::vector<std::wstring>& targets) {
    ListBuffer buffer;
    DWORD length = 0;
    const auto ask = [&](ListBuffer& answer, std::size_t& /*needed*/) {
        length =
            CallBound(Kernel32DLL::Get().QueryDosDeviceW, DWORD{0}, device, answer.data(), SizeOf(answer));
        return ErrorUnless(length != 0);
    };
    const DWORD error =
        GrowAndRetry(buffer, kNameCharacters, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), ask);
    return error == ERROR_SUCCESS ? TakeEntries(buffer, length, targets) : error;
}

DWORD ReadVolumeNameOf(const std::wstring& mount_point, std::wstring& volume) {
    NameBuffer name{};
    const DWORD error = ErrorUnless(CallBound(Kernel32DLL::Get().GetVolumeNameForVolumeMountPointW, FALSE,
                                              mount_point.c_str(), name.data(), kNameCharacters));
    if (error == ERROR_SUCCESS) {
        volume = TextOf(name);
    }
    return error;
}

DWORD ReadLogicalDrives(DWORD& drives) {
    const DWORD mask = CallBound(Kernel32DLL::Get().GetLogicalDrives, DWORD{0});
    if (mask == 0) {
        return LastFailure();
    }
    drives = mask;
    return ERROR_SUCCESS;
}

DWORD ListFirstVolume(DWORD name_characters, UniqueVolumeSearch& search, std::wstring& volume) {
    NameBuffer name{};
    search.Reset(CallBound(Kernel32DLL::Get().FindFirstVolumeW, HANDLE{INVALID_HANDLE_VALUE}, name.data(),
                           name_characters));
    if (!search) {
        return LastFailure();
    }
    volume = TextOf(name);
    return ERROR_SUCCESS;
}

DWORD ListNextVolume(DWORD name_characters, const UniqueVolumeSearch& search, std::wstring& volume) {
    NameBuffer name{};
    const DWORD error = ErrorUnless(
        CallBound(Kernel32DLL::Get().FindNextVolumeW, FALSE, search.get(), name.data(), name_characters));
    if (error == ERROR_SUCCESS) {
        volume = TextOf(name);
    }
    return error;
}

}  // namespace win
