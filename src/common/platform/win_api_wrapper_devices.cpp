// The storage function wrapper: opening devices and sending control codes.

#include "common/platform/system_query.h"
#include "common/platform/win_api_wrapper.h"

#include <algorithm>
#include <limits>

namespace win {

namespace {

constexpr std::size_t kFirstControlBytes = 512;
constexpr std::uint32_t kNoDisk = std::numeric_limits<std::uint32_t>::max();

// The growth of all buffers in this file. Uses the size of the caller's buffer if it is larger than the
// initial size.
Growth GrowthOf(const ByteBuffer& buffer) {
    return {.first_bytes = std::max(buffer.size(), kFirstControlBytes)};
}

}  // namespace

bool WinAPIWrapper::CreateFileW(const std::wstring& path, const FileOpening& opening, UniqueFile& file,
                                DWORD& error) {
    const auto query = [&] { return OpenDevice(path, opening, file); };
    return Query(L"win::WinAPIWrapper::CreateFileW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::CreateFile on %s error=%u", path.c_str(), error);
    });
}

bool WinAPIWrapper::OpenPhysicalDrive(std::uint32_t disk_index, DWORD access, UniqueFile* drive,
                                      DWORD& error) {
    error = ERROR_SUCCESS;
    const bool opened = Traced(L"win::WinAPIWrapper::OpenPhysicalDrive", [&] {
        try {
            const std::wstring path = PhysicalDriveName(disk_index);
            if (drive == nullptr) {
                GetLogger().Write(kLogTrace,
                                  L"WinAPIWrapper::OpenPhysicalDrive on %s internal error, bad parameters",
                                  path.c_str());
                error = ERROR_INVALID_PARAMETER;
                return false;
            }
            return CreateFileW(path, {.access = access}, *drive, error);
        } catch (const std::bad_alloc&) {
            error = ERROR_OUTOFMEMORY;
            return false;
        }
    });
    if (drive == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);  // set last, because tracing may change it
    }
    return opened;
}

bool WinAPIWrapper::FlushFileBuffers(const UniqueFile& file, DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::WinAPIWrapper::FlushFileBuffers";
    const auto query = [&] {
        return ErrorUnless(CallBound(Kernel32DLL::Get().FlushFileBuffers, FALSE, file.get()));
    };
    return Query(kFunction, error, query,
                 [&] { GetLogger().Write(kLogTrace, L"%s error=%u", kFunction, error); });
}

bool WinAPIWrapper::GetDriveGeometryEx(const UniqueFile& drive, std::uint32_t disk_index, ByteBuffer& buffer,
                                       DWORD& error) {
    const auto query = [&] { return ReadDriveGeometryEx(drive, GrowthOf(buffer), buffer); };
    return Query(L"win::WinAPIWrapper::GetDriveGeometryEx", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDriveGeometryEx on drive %d error=%u", disk_index,
                          error);
    });
}

bool WinAPIWrapper::GetDriveLayoutEx(const UniqueFile& drive, std::uint32_t disk_index, ByteBuffer& buffer,
                                     DWORD& error) {
    const bool bad_parameter = !drive || disk_index == kNoDisk;
    const auto query = [&]() -> DWORD {
        if (bad_parameter) {
            buffer.clear();
            return ERROR_INVALID_PARAMETER;
        }
        return ReadDriveLayoutEx(drive, GrowthOf(buffer), buffer);
    };
    return Query(L"win::WinAPIWrapper::GetDriveLayoutEx", error, query, [&] {
        if (bad_parameter) {
            GetLogger().Write(
                kLogTrace,
                L"WinAPIWrapper::GetDriveLayoutEx on drive index %d, internal error, bad parameter",
                disk_index);
            return;
        }
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDriveLayoutEx on drive %d error=%u", disk_index,
                          error);
    });
}

bool WinAPIWrapper::GetVolumeDiskExtents(const UniqueFile& volume, const std::wstring& volume_name,
                                         ByteBuffer& buffer, DWORD& error) {
    const auto query = [&] { return ReadVolumeExtents(volume, GrowthOf(buffer), buffer); };
    return Query(L"win::WinAPIWrapper::GetVolumeDiskExtents", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetVolumeDiskExtents on volume %s error=%u",
                          volume_name.c_str(), error);
    });
}

bool WinAPIWrapper::GetDiskLengthInformation(const UniqueFile& device, const std::wstring& name,
                                             std::int64_t& length, DWORD& error) {
    const auto query = [&] { return ReadLength(device, length); };
    return Query(L"win::WinAPIWrapper::GetDiskLengthInformation", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDiskLengthInfo on %s error=%u", name.c_str(), error);
    });
}

bool WinAPIWrapper::SetDriveLayoutEx(const UniqueFile& drive, std::uint32_t disk_index, ByteBuffer& layout,
                                     DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::WinAPIWrapper::SetDriveLayoutEx";
    const auto query = [&] {
        DWORD returned = 0;
        return SendControl(drive, IOCTL_DISK_SET_DRIVE_LAYOUT_EX, layout.data(), layout.size(), nullptr, 0,
                           returned);
    };
    return Query(kFunction, error, query, [&] {
        // Functions that write to a disk log errors. The name of the control code lacks "_EX":
        // compatibility C13
        GetLogger().Write(kLogError, L"%s IOCTL_DISK_SET_DRIVE_LAYOUT of disk %u error=%u", kFunction,
                          disk_index, error);
    });
}

bool WinAPIWrapper::CreateDisk(const UniqueFile& drive, CREATE_DISK& description, DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::WinAPIWrapper::CreateDisk";
    const auto query = [&]() -> DWORD {
        DWORD returned = 0;
        return drive ? SendControl(drive, IOCTL_DISK_CREATE_DISK, &description, sizeof(description), nullptr,
                                   0, returned)
                     : static_cast<DWORD>(ERROR_INVALID_PARAMETER);
    };
    return Query(kFunction, error, query, [&] {
        if (!drive) {
            GetLogger().Write(kLogTrace, L"%s - internal error, bad parameter", kFunction);
            return;
        }
        GetLogger().Write(kLogError, L"%s IOCTL_DISK_CREATE_DISK error=%u", kFunction, error);
    });
}

bool WinAPIWrapper::UpdateDiskProperties(const UniqueFile& drive, DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::WinAPIWrapper::UpdateDiskProperties";
    const auto query = [&]() -> DWORD {
        DWORD returned = 0;
        return drive ? SendControl(drive, IOCTL_DISK_UPDATE_PROPERTIES, nullptr, 0, nullptr, 0, returned)
                     : static_cast<DWORD>(ERROR_INVALID_PARAMETER);
    };
    const bool updated = Query(kFunction, error, query, [&] {
        if (!drive) {
            GetLogger().Write(kLogTrace, L"%s - internal error, bad parameter", kFunction);
            return;
        }
        GetLogger().Write(kLogError, L"%s IOCTL_DISK_UPDATE_PROPERTIES error=%u", kFunction, error);
    });
    if (!drive) {
        SetLastError(ERROR_INVALID_PARAMETER);  // set last, because tracing may change it
    }
    return updated;
}

}  // namespace win
