// The volume side of the enumerator: drive letters, and the walk over the drives.

#include "common/enumdisk/enum_disk.h"

#include "common/enumdisk/device_files.h"
#include "common/logger/trace.h"
#include "common/platform/device_control.h"
#include "common/platform/listing_bound.h"
#include "common/platform/multi_string.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <new>

namespace {

constexpr wchar_t kAssertionSource[] = L"src/common/enumdisk";

bool Assert(bool condition, int line, const wchar_t* text) {
    if (!condition) {
        LogAssertionFailure(kAssertionSource, line, text);
    }
    return condition;
}

std::vector<std::wstring> MountPathsOf(const std::wstring& volume) {
    constexpr std::size_t kCharacters = 4096;
    std::vector<wchar_t> buffer(kCharacters);
    DWORD length = 0;
    if (CallBound(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW, FALSE, volume.c_str(), buffer.data(),
                  static_cast<DWORD>(buffer.size()), &length) == FALSE) {
        const DWORD error = win::LastFailure();
        GetLogger().Write(kLogWarning,
                          L"EnumDisk::GetDrives on %s GetVolumePathNamesForVolumeNameW error=0x%x %d",
                          volume.c_str(), error, error);
        return {};
    }
    return SplitMultiString(buffer.data(), std::min<std::size_t>(length, buffer.size()));
}

// The line feed here and in GetDrives: compatibility C17
int WalkFailed(DWORD error) {
    GetLogger().Write(kLogError, L"EnumDisk::GetDrives FindNextVolumeW failed with error code %d\n", error);
    return 0;
}

// Opens a volume for its extents, for reading only where more is refused: compatibility C138
UniqueFile OpenVolumeForExtents(const std::wstring& volume) {
    constexpr const wchar_t* kFailure = L"OpenVolumeForExtents: Opening the drive %s failed Error = %d";
    UniqueFile file = OpenDevice(volume, GENERIC_READ | GENERIC_WRITE);
    if (!file) {
        GetLogger().Write(kLogWarning, kFailure, volume.c_str(), win::LastFailure());
        file = OpenDevice(volume, GENERIC_READ, FILE_SHARE_READ);
        if (!file) {
            GetLogger().Write(kLogError, kFailure, volume.c_str(), win::LastFailure());
        }
    }
    return file;
}

}  // namespace

bool EnumDisk::IsDriveLetter(const wchar_t* mount_path, std::size_t length) const {
    constexpr std::size_t kRootLength = 3;
    return Assert(mount_path != nullptr, __LINE__, L"NULL != mount_path") && length == kRootLength &&
           std::iswalpha(mount_path[0]) != 0 && mount_path[1] == L':' && mount_path[2] == L'\\';
}

std::wstring EnumDisk::GetDriveLetter(const wchar_t* volume_name, const wchar_t* mount_paths,
                                      std::size_t length) {
    const wchar_t* const name =
        Assert(volume_name != nullptr, __LINE__, L"NULL != volume_name") ? volume_name : L"";
    std::vector<std::wstring> paths;
    if (Assert(mount_paths != nullptr, __LINE__, L"NULL != mount_paths")) {
        paths = SplitMultiString(mount_paths, length);
    }
    const std::wstring* first = nullptr;  // in the order of the alphabet
    for (const std::wstring& path : paths) {
        if (IsDriveLetter(path.c_str(), path.size())) {
            first = first == nullptr || path < *first ? &path : first;
        } else {
            GetLogger().Write(kLogTrace,
                              L"EnumDisk::GetDriveLetter %s volume mount path %s is not a drive letter", name,
                              path.c_str());
        }
    }
    if (first == nullptr) {
        GetLogger().Write(
            kLogTrace,
            L"EnumDisk::GetDriveLetter %s volume no appropriate drive letter found (checked %d names), "
            L"it will be displayed by its label or GUID in the application's UI",
            name, static_cast<int>(paths.size()));
        return {};
    }
    return *first;
}

bool EnumDisk::QueryExtents(const std::wstring& volume, win::ByteBuffer& extents) {
    const UniqueFile file = OpenVolumeForExtents(volume);
    if (!file) {
        return false;
    }
    constexpr std::size_t kFirstBytes = 32;
    constexpr int kMostRounds = 16;  // the first answer tells the size that is enough; a few more for changes
    extents.assign(kFirstBytes, 0);
    DWORD error = ERROR_MORE_DATA;
    DWORD returned = 0;
    for (int round = 0; round < kMostRounds; ++round) {
        error = win::SendControl(file, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0, extents.data(),
                                 extents.size(), returned);
        const std::uint64_t count =
            reinterpret_cast<const VOLUME_DISK_EXTENTS*>(extents.data())->NumberOfDiskExtents;
        // Size times count plus one, plus one byte: compatibility C139
        const std::uint64_t next = extents.size() * (count + 1) + 1;
        if (error != ERROR_MORE_DATA || next > win::kLargestAnswerBytes) {
            break;
        }
        extents.assign(next, 0);
    }
    if (error == ERROR_SUCCESS) {
        extents.resize(std::min<std::size_t>(returned, extents.size()));
        if (win::IsWholeExtentList(extents)) {
            return true;
        }
        error = ERROR_INVALID_DATA;
    }
    GetLogger().Write(kLogError,
                      L"GetVolumeExtents IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS %s failed error=0x%x %d",
                      volume.c_str(), error, error);
    return false;
}

// The lines name functions that do not exist: compatibility C10
EnumDisk::ExtentResult EnumDisk::GetVolumeExtents(const std::wstring& volume, DriveRow& drive) {
    win::ByteBuffer buffer;
    try {
        if (!QueryExtents(volume, buffer)) {
            return ExtentResult::kFailed;
        }
    } catch (const std::bad_alloc&) {  // a volume that counts more extents than there is memory for
        return ExtentResult::kFailed;
    }
    const auto& list = *reinterpret_cast<const VOLUME_DISK_EXTENTS*>(buffer.data());
    const DISK_EXTENT* const first = list.Extents;
    for (const DISK_EXTENT* extent = first; extent != first + list.NumberOfDiskExtents; ++extent) {
        TraceMessage(L"GetVolumeExtents: DriveLetter:%s diskNum=%u offset:%I64d Size:%I64d", volume.c_str(),
                     extent->DiskNumber, extent->StartingOffset.QuadPart, extent->ExtentLength.QuadPart);
    }
    if (list.NumberOfDiskExtents == 1) {
        drive.disk_number = first->DiskNumber;
        drive.offset = first->StartingOffset.QuadPart;
        return ExtentResult::kSingle;
    }
    if (list.NumberOfDiskExtents == 0) {
        GetLogger().Write(kLogWarning, L"GetVolumeExtentsInternal on %s extents.size() == 0", volume.c_str());
        return ExtentResult::kFailed;
    }
    GetLogger().Write(kLogTrace, L"GetVolumeExtentsInternal on %s extents.size() > 1", volume.c_str());
    return ExtentResult::kSeveral;
}

void EnumDisk::GetVolumeInfo(DriveRow& drive) {
    constexpr const wchar_t* kFunction = L"EnumDisk::GetVolumeInfo";
    Traced(kFunction, [&] {
        if (drive.letter.empty()) {
            GetLogger().Write(kLogTrace, L"%s GetVolumeInformation 'empty' drive letter passed in",
                              kFunction);
            return;
        }
        std::array<wchar_t, 255> label{};
        std::array<wchar_t, 255> file_system{};
        std::array<wchar_t, 8> root{};
        _snwprintf(root.data(), root.size() - 1, L"%s\\", drive.letter.c_str());
        DWORD serial = 0;
        DWORD component_length = 0;
        DWORD flags = 0;
        if (CallBound(Kernel32DLL::Get().GetVolumeInformationW, FALSE, root.data(), label.data(),
                      static_cast<DWORD>(label.size()), &serial, &component_length, &flags,
                      file_system.data(), static_cast<DWORD>(file_system.size())) == FALSE) {
            const DWORD error = win::LastFailure();
            GetLogger().Write(kLogTrace, L"EnumDisk::GetVolumeInfo GetVolumeInformation of %s error=0x%x %d",
                              root.data(), error, error);
            return;
        }
        drive.file_system.assign(file_system.data(), wcsnlen(file_system.data(), file_system.size()));
    });
}

bool EnumDisk::DescribeDrive(const std::wstring& volume, DriveRow& drive) {
    const std::vector<std::wstring> paths = MountPathsOf(volume);
    const UINT type = CallBound(Kernel32DLL::Get().GetDriveTypeW, UINT{DRIVE_UNKNOWN}, volume.c_str());
    GetLogger().Write(kLogTrace, L"EnumDisk::GetDrives volume %s is type %d", volume.c_str(), type);
    if (type == DRIVE_UNKNOWN) {
        GetLogger().Write(kLogWarning, L"EnumDisk::GetDrives %s unknown disk type", volume.c_str());
    }
    if (type == DRIVE_NO_ROOT_DIR) {
        GetLogger().Write(kLogWarning, L"EnumDisk::GetDrives %s no root dir on the drive", volume.c_str());
    }
    if (type != DRIVE_FIXED) {
        return false;
    }
    drive.volume = volume;
    // The beginning of a folder's path too: compatibility C93
    drive.letter = paths.empty() ? std::wstring() : paths.front().substr(0, 2);
    std::wstring device = volume;
    if (device.ends_with(L'\\')) {
        device.pop_back();
    }
    switch (GetVolumeExtents(device, drive)) {
        case ExtentResult::kFailed:
            GetLogger().Write(kLogWarning, L"EnumDisk::GetDrives skipping %s", volume.c_str());
            return false;
        case ExtentResult::kSeveral:
            GetLogger().Write(kLogTrace,
                              L"EnumDisk::GetDrives volume %s ignoring error from GetVolumeExtentsFromGUID",
                              volume.c_str());
            break;
        case ExtentResult::kSingle:
            break;
    }
    GetVolumeInfo(drive);
    return true;
}

int EnumDisk::GetDrives(std::vector<DriveRow>& drives) {
    std::array<wchar_t, 255> name{};
    const UniqueVolumeSearch search(CallBound(Kernel32DLL::Get().FindFirstVolumeW,
                                              HANDLE{INVALID_HANDLE_VALUE}, name.data(),
                                              static_cast<DWORD>(name.size())));
    if (!search) {
        GetLogger().Write(kLogError, L"EnumDisk::GetDrives on FindFirstVolumeW failed with error code %d\n",
                          win::LastFailure());
        return 0;
    }
    for (std::size_t i = 0; i < kMostListed; ++i) {
        DriveRow drive;
        if (DescribeDrive({name.data(), wcsnlen(name.data(), name.size())}, drive)) {
            drives.push_back(std::move(drive));
        }
        name.fill(L'\0');
        if (CallBound(Kernel32DLL::Get().FindNextVolumeW, FALSE, search.get(), name.data(),
                      static_cast<DWORD>(name.size())) != FALSE) {
            continue;
        }
        const DWORD error = win::LastFailure();
        if (error == ERROR_NO_MORE_FILES) {
            return 1;
        }
        return WalkFailed(error);
    }
    return WalkFailed(ERROR_INVALID_DATA);
}
