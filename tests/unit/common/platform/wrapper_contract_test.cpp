// The behaviour common to all wrappers of kernel32 functions: trace lines, error code, one failure line, no
// exception.

#include "support/logger_capture.h"
#include "support/stub.h"
#include "wrapper_calls.h"

#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

using support::LoggerCapture;
using support::LogLine;
using support::Stub;
using testing::MatchesRegex;
using testing::SizeIs;

std::string Qualified(const WrapperCall& call) {
    return "win::WinAPIWrapper::" + call.name;
}

// Makes all functions behind the wrappers fail with the same error code.
class FailingSystem {
public:
    explicit FailingSystem(DWORD code)
        : path_names_(table_.GetVolumePathNamesForVolumeNameW,
                      [code](const wchar_t*, wchar_t*, DWORD, DWORD*) -> BOOL { return Fail(code); }),
          dos_device_(table_.QueryDosDeviceW,
                      [code](const wchar_t*, wchar_t*, DWORD) -> DWORD { return Fail(code), 0; }),
          drive_type_(table_.GetDriveTypeW,
                      [code](const wchar_t*) -> UINT { return Fail(code), DRIVE_UNKNOWN; }),
          free_space_(table_.GetDiskFreeSpaceW,
                      [code](const wchar_t*, DWORD*, DWORD*, DWORD*, DWORD*) -> BOOL { return Fail(code); }),
          free_space_ex_(table_.GetDiskFreeSpaceExW,
                         [code](const wchar_t*, ULARGE_INTEGER*, ULARGE_INTEGER*, ULARGE_INTEGER*) -> BOOL {
                             return Fail(code);
                         }),
          information_(table_.GetVolumeInformationW,
                       [code](const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t*,
                              DWORD) -> BOOL { return Fail(code); }),
          find_first_(table_.FindFirstVolumeW,
                      [code](wchar_t*, DWORD) -> HANDLE { return Fail(code), INVALID_HANDLE_VALUE; }),
          find_next_(table_.FindNextVolumeW, [code](HANDLE, wchar_t*, DWORD) -> BOOL { return Fail(code); }),
          create_(table_.CreateFileW,
                  [code](const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) -> HANDLE {
                      return Fail(code), INVALID_HANDLE_VALUE;
                  }),
          flush_(table_.FlushFileBuffers, [code](HANDLE) -> BOOL { return Fail(code); }),
          control_(table_.DeviceIoControl,
                   [code](HANDLE, DWORD, void*, DWORD, void*, DWORD, DWORD*, OVERLAPPED*) -> BOOL {
                       return Fail(code);
                   }) {}

private:
    static BOOL Fail(DWORD code) {
        SetLastError(code);
        return FALSE;
    }

    template <class Function, class Body>
    static std::shared_ptr<void> Replace(Function& function, Body body) {
        return std::make_shared<Stub<Function, Body>>(function, std::move(body));
    }

    struct Replaced {
        template <class Function, class Body>
        Replaced(Function& function, Body body) : stub(Replace(function, std::move(body))) {}
        std::shared_ptr<void> stub;
    };

    Kernel32DLL& table_ = Kernel32DLL::Get();
    Replaced path_names_, dos_device_, drive_type_, free_space_, free_space_ex_, information_, find_first_,
        find_next_, create_, flush_, control_;
};

class EachWrapper : public testing::TestWithParam<WrapperCall> {
protected:
    // Makes the call with an invalid value in the error code.
    bool Call() {
        error_ = 0xDEAD;
        return GetParam().call(error_);
    }

    LoggerCapture log_;
    DWORD error_ = 0;
};

TEST_P(EachWrapper, SystemFails_ReturnsFalseWithTheCodeAndOneLineBetweenTheTraceLines) {
    const FailingSystem system(kExampleError);

    EXPECT_FALSE(Call());

    EXPECT_EQ(error_, kExampleError);
    ASSERT_THAT(log_.all(), SizeIs(3)) << log_;
    EXPECT_THAT(log_.all()[0].text,
                MatchesRegex("Entering function " + Qualified(GetParam()) + " line \\d+"));
    EXPECT_EQ(log_.all()[0].level, support::kHostTrace);
    EXPECT_EQ(log_.all()[1], (LogLine{GetParam().failure_level, GetParam().failure_line}));
    EXPECT_THAT(log_.all()[2].text, MatchesRegex("Leaving function " + Qualified(GetParam()) + " line \\d+"));
    EXPECT_EQ(log_.all()[2].level, support::kHostTrace);
}

TEST_P(EachWrapper, SystemFailsWithoutACode_StillReturnsOne) {
    const FailingSystem system(0);

    EXPECT_FALSE(Call());

    EXPECT_NE(error_, 0U);
    EXPECT_THAT(log_.all(), SizeIs(3)) << log_;
}

// The table is all null, as when nothing could be bound.
TEST_P(EachWrapper, FunctionIsNotBound_FailsWithTheProcedureNotFound) {
    alignas(Kernel32DLL) unsigned char saved[sizeof(Kernel32DLL)];
    void* const table = &Kernel32DLL::Get();
    std::memcpy(saved, table, sizeof(saved));
    std::memset(table, 0, sizeof(saved));

    const bool result = Call();

    std::memcpy(table, saved, sizeof(saved));
    EXPECT_FALSE(result);
    EXPECT_EQ(error_, DWORD{ERROR_PROC_NOT_FOUND});
    EXPECT_THAT(log_.all(), SizeIs(3)) << log_;
}

INSTANTIATE_TEST_SUITE_P(All, EachWrapper, testing::ValuesIn(KernelWrapperCalls()),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
