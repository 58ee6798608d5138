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
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using win::WinAPIWrapper;

constexpr wchar_t kVolume[] = L"\\\\?\\Volume{a}\\";

class PathNames : public testing::Test {
protected:
    bool Get(const std::wstring& volume = kVolume) {
        return WinAPIWrapper::GetVolumePathNamesForVolumeNameW(volume, paths_, error_);
    }

    LoggerCapture log_;
    std::vector<std::wstring> paths_ = {L"before"};
    DWORD error_ = 0xDEAD;
};

TEST_F(PathNames, SeveralMountPoints_AreGivenInTheirOrder) {
    const ListingSystem system(MultiString({L"C:\\", L"C:\\Data\\Archive\\"}));

    EXPECT_TRUE(Get());

    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(paths_, ElementsAre(L"C:\\", L"C:\\Data\\Archive\\"));
}

TEST_F(PathNames, NoMountPoint_IsAnEmptyList) {
    const ListingSystem system(MultiString({}));
    EXPECT_TRUE(Get());
    EXPECT_THAT(paths_, IsEmpty());
}

TEST_F(PathNames, NameWithoutTrailingBackslash_GetsOne) {
    const ListingSystem system(MultiString({}));
    Get(L"\\\\?\\Volume{a}");
    EXPECT_THAT(system.names, ElementsAre(L"\\\\?\\Volume{a}\\"));
}

TEST_F(PathNames, NameWithTrailingBackslash_IsPassedUnchanged) {
    const ListingSystem system(MultiString({}));
    Get(L"\\\\?\\Volume{a}\\");
    EXPECT_THAT(system.names, ElementsAre(L"\\\\?\\Volume{a}\\"));
}

class PathNamesLengths : public PathNames,
                         public testing::WithParamInterface<std::pair<std::size_t, std::vector<DWORD>>> {};

TEST_P(PathNamesLengths, ListOfAnyLength_IsReadWithAtMostOneRetryOfTheTrueLength) {
    const auto& [length, sizes] = GetParam();
    const ListingSystem system(ListOf(length));

    EXPECT_TRUE(Get());

    EXPECT_EQ(system.sizes, sizes);
    EXPECT_THAT(paths_, ElementsAre(std::wstring(length - 2, L'x')));
}

INSTANTIATE_TEST_SUITE_P(AroundTheFirstBuffer, PathNamesLengths,
                         testing::Values(std::pair{511U, std::vector<DWORD>{512}},
                                         std::pair{512U, std::vector<DWORD>{512}},
                                         std::pair{513U, std::vector<DWORD>{512, 513}},
                                         std::pair{5000U, std::vector<DWORD>{512, 5000}}));

TEST_F(PathNames, ListThatGrowsBetweenTheCalls_IsAskedForAgain) {
    std::vector<DWORD> sizes;
    const std::wstring list = ListOf(700);
    const Stub system(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                      [&](const wchar_t*, wchar_t* buffer, DWORD size, DWORD* length) -> BOOL {
                          sizes.push_back(size);
                          *length = size < 600 ? 600 : 700;
                          if (size < 700) {
                              SetLastError(ERROR_MORE_DATA);
                              return FALSE;
                          }
                          std::copy(list.begin(), list.end(), buffer);
                          return TRUE;
                      });

    EXPECT_TRUE(Get());

    EXPECT_THAT(sizes, ElementsAre(512U, 600U, 700U));
    EXPECT_THAT(paths_, ElementsAre(std::wstring(698, L'x')));
}

TEST_F(PathNames, AnotherTooSmallError_EndsAtOnce) {
    int calls = 0;
    const Stub system(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                      [&](const wchar_t*, wchar_t*, DWORD, DWORD* length) -> BOOL {
                          ++calls;
                          *length = 9000;
                          SetLastError(ERROR_INSUFFICIENT_BUFFER);
                          return FALSE;
                      });

    EXPECT_FALSE(Get());

    EXPECT_EQ(calls, 1);
    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(PathNames, SuccessWithAMisleadingLastError_IsSuccess) {
    ListingSystem system(MultiString({L"C:\\"}));
    system.last_error_on_success = ERROR_MORE_DATA;

    EXPECT_TRUE(Get());

    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(system.sizes, SizeIs(1));
}

class PathNamesEndless : public PathNames, public testing::WithParamInterface<DWORD> {};

TEST_P(PathNamesEndless, SystemThatAsksForMoreForEver_IsGivenUp) {
    int calls = 0;
    const Stub system(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                      [&](const wchar_t*, wchar_t*, DWORD, DWORD* length) -> BOOL {
                          ++calls;
                          *length = GetParam();
                          SetLastError(ERROR_MORE_DATA);
                          return FALSE;
                      });

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, DWORD{ERROR_MORE_DATA});
    EXPECT_THAT(calls, Le(32));
    EXPECT_TRUE(
        log_.Contains(support::kHostTrace,
                      "WinAPIWrapper::GetVolumePathNamesForVolumeName for \\\\?\\Volume{a}\\ error=234"))
        << log_;
}

TEST_F(PathNames, SystemThatAsksForALittleMoreForEver_IsGivenUp) {
    int calls = 0;
    const Stub system(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                      [&](const wchar_t*, wchar_t*, DWORD size, DWORD* length) -> BOOL {
                          ++calls;
                          *length = size + 1;
                          SetLastError(ERROR_MORE_DATA);
                          return FALSE;
                      });

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, DWORD{ERROR_MORE_DATA});
    EXPECT_THAT(calls, Le(32));
}

INSTANTIATE_TEST_SUITE_P(LengthsItTells, PathNamesEndless, testing::Values(0U, 1U, 512U, 0xFFFFFFFFU));

TEST_F(PathNames, LengthBeyondTheBufferOnSuccess_IsAnInvalidAnswer) {
    const Stub system(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                      [&](const wchar_t*, wchar_t* buffer, DWORD size, DWORD* length) -> BOOL {
                          std::fill_n(buffer, size, L'x');
                          buffer[3] = L'\0';
                          *length = 0x10000000;
                          return TRUE;
                      });

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
}

TEST_F(PathNames, AllocationFailsWhileGrowing_IsError14) {
    const ListingSystem system(ListOf(40000));
    const AllocationFailure failing(20000);

    EXPECT_FALSE(Get());

    EXPECT_EQ(error_, 14U);
    EXPECT_EQ(failing.hits(), 1U);
    EXPECT_TRUE(
        log_.Contains(support::kHostTrace,
                      "WinAPIWrapper::GetVolumePathNamesForVolumeName for \\\\?\\Volume{a}\\ error=14"))
        << log_;
    EXPECT_THAT(log_.all().back().text, testing::StartsWith("Leaving function "));
}

}  // namespace
