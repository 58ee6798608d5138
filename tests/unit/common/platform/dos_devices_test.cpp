#include "common/platform/win_api_wrapper.h"
#include "listing_system.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"
#include "support/text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using support::AllocationFailure;
using support::LoggerCapture;
using support::MultiString;
using support::Stub;
using testing::ElementsAre;
using testing::Le;
using testing::SizeIs;
using win::WinAPIWrapper;

class DosDevices : public testing::Test {
protected:
    bool Get(const std::wstring& device = L"C:") {
        return WinAPIWrapper::QueryDosDeviceW(device, targets_, error_);
    }

    LoggerCapture log_;
    std::vector<std::wstring> targets_ = {L"before"};
    DWORD error_ = 0xDEAD;
};

TEST_F(DosDevices, SeveralTargets_AreGivenInTheirOrder) {
    const ListingSystem system(MultiString({L"\\Device\\HarddiskVolume3", L"\\Device\\Old"}));

    EXPECT_TRUE(Get());

    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(system.names, ElementsAre(L"C:"));
    EXPECT_THAT(targets_, ElementsAre(L"\\Device\\HarddiskVolume3", L"\\Device\\Old"));
}

TEST_F(DosDevices, ListOfNothing_IsASuccessWithoutTargets) {
    const ListingSystem system(std::wstring(2, L'\0'));

    EXPECT_TRUE(Get());

    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(targets_, SizeIs(0));
    EXPECT_FALSE(log_.ContainsPart(support::kHostTrace, "WinAPIWrapper::QueryDosDevice of ")) << log_;
}

TEST_F(DosDevices, EmptyName_IsPassedAsNull) {
    const ListingSystem system(MultiString({L"C:", L"PhysicalDrive0"}));

    EXPECT_TRUE(Get(L""));

    EXPECT_THAT(system.names, ElementsAre(L"(null)"));
    EXPECT_THAT(targets_, ElementsAre(L"C:", L"PhysicalDrive0"));
}

TEST_F(DosDevices, EmptyNameFails_IsLoggedAsNull) {
    const Stub system(Kernel32DLL::Get().QueryDosDeviceW, [](const wchar_t*, wchar_t*, DWORD) -> DWORD {
        SetLastError(5);
        return 0;
    });

    EXPECT_FALSE(Get(L""));

    EXPECT_TRUE(log_.Contains(support::kHostTrace, "WinAPIWrapper::QueryDosDevice of NULL error=5")) << log_;
}

class DosDevicesLengths : public DosDevices,
                          public testing::WithParamInterface<std::pair<std::size_t, std::vector<DWORD>>> {};

TEST_P(DosDevicesLengths, ListOfAnyLength_IsReadByDoubling) {
    const auto& [length, sizes] = GetParam();
    const ListingSystem system(ListOf(length));

    EXPECT_TRUE(Get());

    EXPECT_EQ(system.sizes, sizes);
    EXPECT_THAT(targets_, ElementsAre(std::wstring(length - 2, L'x')));
}

INSTANTIATE_TEST_SUITE_P(AroundTheFirstBuffer, DosDevicesLengths,
                         testing::Values(std::pair{259U, std::vector<DWORD>{260}},
                                         std::pair{260U, std::vector<DWORD>{260}},
                                         std::pair{261U, std::vector<DWORD>{260, 520}},
                                         std::pair{1040U, std::vector<DWORD>{260, 520, 1040}},
                                         std::pair{1041U, std::vector<DWORD>{260, 520, 1040, 2080}}));

TEST_F(DosDevices, SystemThatAsksForMoreForEver_IsGivenUp) {
    int calls = 0;
    const Stub system(Kernel32DLL::Get().QueryDosDeviceW, [&](const wchar_t*, wchar_t*, DWORD) -> DWORD {
        ++calls;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    });

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_THAT(calls, Le(32));
}

TEST_F(DosDevices, SuccessWithAMisleadingLastError_IsSuccess) {
    ListingSystem system(MultiString({L"\\Device\\X"}));
    system.last_error_on_success = ERROR_INSUFFICIENT_BUFFER;

    EXPECT_TRUE(Get());

    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(system.sizes, SizeIs(1));
}

TEST_F(DosDevices, LengthBeyondTheBufferOnSuccess_IsAnInvalidAnswer) {
    const Stub system(Kernel32DLL::Get().QueryDosDeviceW,
                      [&](const wchar_t*, wchar_t* buffer, DWORD size) -> DWORD {
                          std::fill_n(buffer, size, L'x');
                          buffer[3] = L'\0';
                          return 0x10000000;
                      });

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
}

TEST_F(DosDevices, AllocationFailsWhileGrowing_IsError14) {
    const ListingSystem system(ListOf(40000));
    const AllocationFailure failing(20000);

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, 14U);
    EXPECT_TRUE(log_.Contains(support::kHostTrace, "WinAPIWrapper::QueryDosDevice of C: error=14")) << log_;
}

}  // namespace
