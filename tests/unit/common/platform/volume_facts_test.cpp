// The wrappers that query one volume: drive type, space, label and file system, the volume search.

#include "common/platform/win_api_wrapper.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using support::LoggerCapture;
using support::Stub;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using win::WinAPIWrapper;

class VolumeFacts : public testing::Test {
protected:
    Kernel32DLL& table_ = Kernel32DLL::Get();
    LoggerCapture log_;
    DWORD error_ = 0xDEAD;
};

TEST_F(VolumeFacts, GetDriveTypeW_RootWithAndWithoutBackslash_IsAskedWithOne) {
    std::vector<std::wstring> asked;
    const Stub stub(table_.GetDriveTypeW, [&](const wchar_t* root) -> UINT {
        asked.emplace_back(root);
        return DRIVE_FIXED;
    });
    UINT type = 0;

    WinAPIWrapper::GetDriveTypeW(L"C:", type, error_);
    WinAPIWrapper::GetDriveTypeW(L"D:\\", type, error_);

    EXPECT_THAT(asked, ElementsAre(L"C:\\", L"D:\\"));
}

TEST_F(VolumeFacts, GetDriveTypeW_Unknown_FailsAlthoughTheSystemLeftNoCode) {
    const Stub stub(table_.GetDriveTypeW, [](const wchar_t*) { return UINT{DRIVE_UNKNOWN}; });
    UINT type = DRIVE_FIXED;
    SetLastError(0);

    EXPECT_FALSE(WinAPIWrapper::GetDriveTypeW(L"C:\\", type, error_));

    EXPECT_EQ(type, UINT{DRIVE_UNKNOWN});
    EXPECT_NE(error_, 0U);
    EXPECT_THAT(log_.all(), Contains(Trace("WinAPIWrapper::GetDriveType Unknown")));
}

TEST_F(VolumeFacts, GetDiskFreeSpaceExW_Success_GivesThe64BitNumbers) {
    std::wstring asked;
    const Stub stub(table_.GetDiskFreeSpaceExW,
                    [&](const wchar_t* root, ULARGE_INTEGER* to_caller, ULARGE_INTEGER* total,
                        ULARGE_INTEGER* free) -> BOOL {
                        asked = root;
                        to_caller->QuadPart = 0x1122334455667788;
                        total->QuadPart = 0xFFFFFFFFFFFFFFFF;
                        free->QuadPart = 0x8000000000000001;
                        return TRUE;
                    });
    win::DiskFreeSpaceEx space;

    EXPECT_TRUE(WinAPIWrapper::GetDiskFreeSpaceExW(L"C:\\Mount\\", space, error_));

    EXPECT_EQ(asked, L"C:\\Mount\\");
    EXPECT_EQ(space.free_available_to_caller, 0x1122334455667788U);
    EXPECT_EQ(space.total, 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(space.total_free, 0x8000000000000001U);
}

TEST_F(VolumeFacts, GetVolumeInformationW_Success_GivesTheFiveFacts) {
    std::vector<DWORD> sizes;
    const Stub stub(table_.GetVolumeInformationW,
                    [&](const wchar_t*, wchar_t* label, DWORD label_size, DWORD* serial, DWORD* longest,
                        DWORD* flags, wchar_t* file_system, DWORD file_system_size) -> BOOL {
                        sizes = {label_size, file_system_size};
                        std::wstring(L"Daten\0behind", 12).copy(label, 12);
                        *serial = 0xCAFE1234;
                        *longest = 255;
                        *flags = 0x03E72EFF;
                        std::wstring(L"NTFS\0", 5).copy(file_system, 5);
                        return TRUE;
                    });
    win::VolumeInformation information;

    EXPECT_TRUE(WinAPIWrapper::GetVolumeInformationW(L"C:\\", information, error_));

    EXPECT_THAT(sizes, ElementsAre(260U, 260U));
    EXPECT_EQ(information.label, L"Daten");
    EXPECT_EQ(information.serial_number, 0xCAFE1234U);
    EXPECT_EQ(information.maximum_component_length, 255U);
    EXPECT_EQ(information.file_system_flags, 0x03E72EFFU);
    EXPECT_EQ(information.file_system, L"NTFS");
}

TEST_F(VolumeFacts, GetVolumeInformationW_TextsWithoutTerminator_AreReadNoFurtherThanTheirBuffers) {
    const Stub stub(table_.GetVolumeInformationW,
                    [](const wchar_t*, wchar_t* label, DWORD label_size, DWORD*, DWORD*, DWORD*,
                       wchar_t* file_system, DWORD file_system_size) -> BOOL {
                        std::fill_n(label, label_size, L'l');
                        std::fill_n(file_system, file_system_size, L'f');
                        return TRUE;
                    });
    win::VolumeInformation information;

    EXPECT_TRUE(WinAPIWrapper::GetVolumeInformationW(L"C:\\", information, error_));

    EXPECT_EQ(information.label, std::wstring(260, L'l'));
    EXPECT_EQ(information.file_system, std::wstring(260, L'f'));
}

TEST_F(VolumeFacts, FindFirstVolumeW_NameWithoutTerminator_IsReadNoFurtherThanItsBuffer) {
    const Stub first(table_.FindFirstVolumeW, [](wchar_t* buffer, DWORD size) -> HANDLE {
        std::fill_n(buffer, size, L'v');
        return reinterpret_cast<HANDLE>(0x44);
    });
    std::wstring volume;
    UniqueVolumeSearch search;

    EXPECT_TRUE(WinAPIWrapper::FindFirstVolumeW(volume, search, error_));

    EXPECT_EQ(volume, std::wstring(260, L'v'));
    search.Release();
}

}  // namespace
