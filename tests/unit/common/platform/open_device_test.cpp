#include "common/platform/win_api_wrapper.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using support::LoggerCapture;
using support::Stub;
using support::Trace;
using testing::Contains;
using testing::SizeIs;
using win::WinAPIWrapper;

struct Opening {
    std::wstring path;
    DWORD access = 0;
    DWORD share_mode = 0;
    DWORD disposition = 0;
    DWORD flags = 0;
    bool others = false;  // security attributes or a template were passed

    bool operator==(const Opening&) const = default;
};

HANDLE Handle(std::uintptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

class OpenDevice : public testing::Test {
protected:
    auto Opener() {
        return [this](const wchar_t* path, DWORD access, DWORD share_mode, SECURITY_ATTRIBUTES* security,
                      DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
            opening_ = {path,        access, share_mode,
                        disposition, flags,  security != nullptr || model != nullptr};
            SetLastError(opens_ == INVALID_HANDLE_VALUE ? 2 : ERROR_ALREADY_EXISTS);
            return opens_;
        };
    }
    auto Closer() {
        return [this](HANDLE handle) -> BOOL {
            closed_.push_back(handle);
            return TRUE;
        };
    }

    HANDLE opens_ = Handle(0x50);
    Opening opening_;
    std::vector<HANDLE> closed_;
    LoggerCapture log_;
    DWORD error_ = 0xDEAD;
};

TEST_F(OpenDevice, CreateFileW_Success_PassesEverythingAndOwnsTheHandle) {
    const Stub create(Kernel32DLL::Get().CreateFileW, Opener());
    const Stub close(Kernel32DLL::Get().CloseHandle, Closer());
    {
        UniqueFile file;
        EXPECT_TRUE(WinAPIWrapper::CreateFileW(
            L"\\\\.\\C:", {.access = GENERIC_READ, .share_mode = 1, .disposition = 4, .flags = 0x20000000},
            file, error_));

        EXPECT_EQ(error_, 0U);
        EXPECT_EQ(file.get(), Handle(0x50));
        EXPECT_TRUE((opening_ == Opening{L"\\\\.\\C:", GENERIC_READ, 1, 4, 0x20000000, false}));
    }
    EXPECT_THAT(closed_, testing::ElementsAre(Handle(0x50)));
    EXPECT_THAT(log_.all(), SizeIs(2)) << log_;
}

TEST_F(OpenDevice, CreateFileW_Failure_LeavesNoHandle) {
    opens_ = INVALID_HANDLE_VALUE;
    const Stub create(Kernel32DLL::Get().CreateFileW, Opener());
    const Stub close(Kernel32DLL::Get().CloseHandle, Closer());
    UniqueFile file;

    EXPECT_FALSE(WinAPIWrapper::CreateFileW(L"\\\\.\\Z:", {}, file, error_));

    EXPECT_EQ(error_, DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(file);
    EXPECT_THAT(closed_, testing::IsEmpty());
}

struct Drive {
    std::uint32_t index;
    const wchar_t* path;
};

class OpenPhysicalDrive : public OpenDevice, public testing::WithParamInterface<Drive> {};

TEST_P(OpenPhysicalDrive, AnyIndex_IsWrittenInDecimal) {
    const Stub create(Kernel32DLL::Get().CreateFileW, Opener());
    UniqueFile drive;

    EXPECT_TRUE(
        WinAPIWrapper::OpenPhysicalDrive(GetParam().index, GENERIC_READ | GENERIC_WRITE, &drive, error_));

    EXPECT_EQ(opening_.path, GetParam().path);
    EXPECT_EQ(opening_.access, GENERIC_READ | GENERIC_WRITE);
    EXPECT_EQ(opening_.disposition, DWORD{OPEN_EXISTING});
    EXPECT_EQ(drive.Release(), Handle(0x50));
}

INSTANTIATE_TEST_SUITE_P(Table, OpenPhysicalDrive,
                         testing::Values(Drive{0, L"\\\\.\\PhysicalDrive0"},
                                         Drive{10, L"\\\\.\\PhysicalDrive10"},
                                         Drive{4294967295, L"\\\\.\\PhysicalDrive4294967295"}));

TEST_F(OpenDevice, OpenPhysicalDrive_Failure_IsLoggedAsTheOpening) {
    opens_ = INVALID_HANDLE_VALUE;
    const Stub create(Kernel32DLL::Get().CreateFileW, Opener());
    UniqueFile drive;

    EXPECT_FALSE(WinAPIWrapper::OpenPhysicalDrive(7, 0, &drive, error_));

    EXPECT_EQ(error_, DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_THAT(log_.all(), Contains(Trace("WinAPIWrapper::CreateFile on \\\\.\\PhysicalDrive7 error=2")));
}

TEST_F(OpenDevice, OpenPhysicalDrive_NoPlaceForTheHandle_IsRefusedWithoutOpening) {
    const Stub create(Kernel32DLL::Get().CreateFileW, Opener());
    SetLastError(0);

    EXPECT_FALSE(WinAPIWrapper::OpenPhysicalDrive(7, 0, nullptr, error_));

    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(error_, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(opening_.path, L"");
    ASSERT_THAT(log_.all(), SizeIs(3)) << log_;
    EXPECT_EQ(
        log_.all()[1],
        Trace("WinAPIWrapper::OpenPhysicalDrive on \\\\.\\PhysicalDrive7 internal error, bad parameters"));
}

}  // namespace
