#include "wrapper_calls.h"

namespace {

using win::WinAPIWrapper;

constexpr int kError = 3;

// A file handle that is not owned and never closed.
class BorrowedFile {
public:
    BorrowedFile() : file_(reinterpret_cast<HANDLE>(0x10)) {}
    ~BorrowedFile() { file_.Release(); }
    BorrowedFile(const BorrowedFile&) = delete;
    BorrowedFile& operator=(const BorrowedFile&) = delete;

    const UniqueFile& get() const { return file_; }

private:
    UniqueFile file_;
};

class BorrowedSearch {
public:
    BorrowedSearch() : search_(reinterpret_cast<HANDLE>(0x10)) {}
    ~BorrowedSearch() { search_.Release(); }
    BorrowedSearch(const BorrowedSearch&) = delete;
    BorrowedSearch& operator=(const BorrowedSearch&) = delete;

    const UniqueVolumeSearch& get() const { return search_; }

private:
    UniqueVolumeSearch search_;
};

constexpr wchar_t kVolume[] = L"\\\\?\\Volume{1}\\";

std::vector<WrapperCall> NameCalls() {
    return {
        {"GetVolumePathNamesForVolumeNameW",
         [](DWORD& error) {
             std::vector<std::wstring> paths;
             return WinAPIWrapper::GetVolumePathNamesForVolumeNameW(kVolume, paths, error);
         },
         "GetVolumePathNamesForVolumeNameW",
         "WinAPIWrapper::GetVolumePathNamesForVolumeName for \\\\?\\Volume{1}\\ error=1167"},
        {"QueryDosDeviceW",
         [](DWORD& error) {
             std::vector<std::wstring> targets;
             return WinAPIWrapper::QueryDosDeviceW(L"C:", targets, error);
         },
         "QueryDosDeviceW", "WinAPIWrapper::QueryDosDevice of C: error=1167"},
        {"GetDriveTypeW",
         [](DWORD& error) {
             UINT type = 0;
             return WinAPIWrapper::GetDriveTypeW(L"C:\\", type, error);
         },
         "GetDriveTypeW", "WinAPIWrapper::GetDriveType Unknown"},
        {"GetDiskFreeSpaceW",
         [](DWORD& error) {
             win::DiskFreeSpace space;
             return WinAPIWrapper::GetDiskFreeSpaceW(L"C:\\", space, error);
         },
         "GetDiskFreeSpaceW", "WinAPIWrapper::GetDiskFreeSpace for C:\\ error=1167"},
        {"GetDiskFreeSpaceExW",
         [](DWORD& error) {
             win::DiskFreeSpaceEx space;
             return WinAPIWrapper::GetDiskFreeSpaceExW(L"C:\\", space, error);
         },
         "GetDiskFreeSpaceExW", "WinAPIWrapper::GetDiskFreeSpaceEx for C:\\ error=1167"},
        {"GetVolumeInformationW",
         [](DWORD& error) {
             win::VolumeInformation information;
             return WinAPIWrapper::GetVolumeInformationW(L"C:\\", information, error);
         },
         "GetVolumeInformationW", "WinAPIWrapper::GetVolumeInfo on drive C:\\ error=1167"},
        {"FindFirstVolumeW",
         [](DWORD& error) {
             std::wstring volume;
             UniqueVolumeSearch search;
             const bool found = WinAPIWrapper::FindFirstVolumeW(volume, search, error);
             search.Release();
             return found;
         },
         "FindFirstVolumeW", "WinAPIWrapper::FindFirstVolume error=1167"},
        {"FindNextVolumeW",
         [](DWORD& error) {
             std::wstring volume;
             return WinAPIWrapper::FindNextVolumeW(BorrowedSearch().get(), volume, error);
         },
         "FindNextVolumeW", "WinAPIWrapper::FindNextVolume error=1167"},
    };
}

std::vector<WrapperCall> DeviceCalls() {
    return {
        {"CreateFileW",
         [](DWORD& error) {
             UniqueFile file;
             const bool opened = WinAPIWrapper::CreateFileW(L"\\\\.\\C:", {}, file, error);
             file.Release();
             return opened;
         },
         "CreateFileW", "WinAPIWrapper::CreateFile on \\\\.\\C: error=1167"},
        {"FlushFileBuffers",
         [](DWORD& error) { return WinAPIWrapper::FlushFileBuffers(BorrowedFile().get(), error); },
         "FlushFileBuffers", "win::WinAPIWrapper::FlushFileBuffers error=1167"},
        {"GetDriveGeometryEx",
         [](DWORD& error) {
             win::ByteBuffer buffer;
             return WinAPIWrapper::GetDriveGeometryEx(BorrowedFile().get(), 12, buffer, error);
         },
         "DeviceIoControl", "WinAPIWrapper::GetDriveGeometryEx on drive 12 error=1167"},
        {"GetDriveLayoutEx",
         [](DWORD& error) {
             win::ByteBuffer buffer;
             return WinAPIWrapper::GetDriveLayoutEx(BorrowedFile().get(), 12, buffer, error);
         },
         "DeviceIoControl", "WinAPIWrapper::GetDriveLayoutEx on drive 12 error=1167"},
        {"GetVolumeDiskExtents",
         [](DWORD& error) {
             win::ByteBuffer buffer;
             return WinAPIWrapper::GetVolumeDiskExtents(BorrowedFile().get(), kVolume, buffer, error);
         },
         "DeviceIoControl", "WinAPIWrapper::GetVolumeDiskExtents on volume \\\\?\\Volume{1}\\ error=1167"},
        {"GetDiskLengthInformation",
         [](DWORD& error) {
             std::int64_t length = 0;
             return WinAPIWrapper::GetDiskLengthInformation(BorrowedFile().get(), L"the name", length, error);
         },
         "DeviceIoControl", "WinAPIWrapper::GetDiskLengthInfo on the name error=1167"},
        {"SetDriveLayoutEx",
         [](DWORD& error) {
             win::ByteBuffer layout(48);
             return WinAPIWrapper::SetDriveLayoutEx(BorrowedFile().get(), 12, layout, error);
         },
         "DeviceIoControl",
         "win::WinAPIWrapper::SetDriveLayoutEx IOCTL_DISK_SET_DRIVE_LAYOUT of disk 12 error=1167", kError},
        {"CreateDisk",
         [](DWORD& error) {
             CREATE_DISK description{};
             return WinAPIWrapper::CreateDisk(BorrowedFile().get(), description, error);
         },
         "DeviceIoControl", "win::WinAPIWrapper::CreateDisk IOCTL_DISK_CREATE_DISK error=1167", kError},
        {"UpdateDiskProperties",
         [](DWORD& error) { return WinAPIWrapper::UpdateDiskProperties(BorrowedFile().get(), error); },
         "DeviceIoControl",
         "win::WinAPIWrapper::UpdateDiskProperties IOCTL_DISK_UPDATE_PROPERTIES error=1167", kError},
    };
}

std::vector<WrapperCall> AllCalls() {
    std::vector<WrapperCall> calls = NameCalls();
    for (WrapperCall& call : DeviceCalls()) {
        calls.push_back(std::move(call));
    }
    return calls;
}

}  // namespace

const std::vector<WrapperCall>& KernelWrapperCalls() {
    static const std::vector<WrapperCall> calls = AllCalls();
    return calls;
}
