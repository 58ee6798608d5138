// The two wrappers that return a list of texts: the targets of a DOS device, the mount points of a volume.

#include "common/platform/win_api_wrapper.h"
#include "listing_system.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"
#include "support/text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using support::AllocationFailure;
using support::LoggerCapture;
using support::MultiString;
using support::Stub;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using testing::Le;
using testing::SizeIs;
using win::WinAPIWrapper;

using Texts = std::vector<std::wstring>;
using Sizes = std::vector<DWORD>;

struct Listing {
    const char* name;
    std::function<bool(Texts& texts, DWORD& error)> get;
    DWORD misleading_error;                              // what a call that needs a larger buffer fails with
    std::vector<std::pair<std::size_t, Sizes>> lengths;  // of a list, with the buffers that it takes
    std::string failure_line;                            // without the error code
};

void PrintTo(const Listing& listing, std::ostream* out) {
    *out << listing.name;
}

const Listing kDosDevice = {
    "QueryDosDevice",
    [](Texts& texts, DWORD& error) { return WinAPIWrapper::QueryDosDeviceW(L"C:", texts, error); },
    ERROR_INSUFFICIENT_BUFFER,
    {{259, {260}}, {260, {260}}, {261, {260, 520}}, {1040, {260, 520, 1040}}, {1041, {260, 520, 1040, 2080}}},
    "WinAPIWrapper::QueryDosDevice of C: error="};

const Listing kPathNames = {"GetVolumePathNames",
                            [](Texts& texts, DWORD& error) {
                                return WinAPIWrapper::GetVolumePathNamesForVolumeNameW(L"\\\\?\\Volume{a}\\",
                                                                                       texts, error);
                            },
                            ERROR_MORE_DATA,
                            {{511, {512}}, {512, {512}}, {513, {512, 513}}, {5000, {512, 5000}}},
                            "WinAPIWrapper::GetVolumePathNamesForVolumeName for \\\\?\\Volume{a}\\ error="};

class Lists : public testing::TestWithParam<Listing> {
protected:
    bool Get() { return GetParam().get(texts_, error_); }

    LoggerCapture log_;
    Texts texts_ = {L"before"};
    DWORD error_ = 0xDEAD;
};

INSTANTIATE_TEST_SUITE_P(Both, Lists, testing::Values(kDosDevice, kPathNames),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(Lists, ListOfAnyLength_IsReadWithTheFewestBuffers) {
    for (const auto& [length, sizes] : GetParam().lengths) {
        const ListingSystem system(ListOf(length));
        EXPECT_TRUE(Get());
        EXPECT_EQ(system.sizes, sizes);
        EXPECT_THAT(texts_, ElementsAre(std::wstring(length - 2, L'x')));
    }
}

TEST_P(Lists, ListOfNothing_IsASuccessWithoutTexts) {
    const ListingSystem system(std::wstring(2, L'\0'));
    EXPECT_TRUE(Get());
    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(texts_, SizeIs(0));
    EXPECT_FALSE(log_.ContainsPart(support::kHostTrace, GetParam().failure_line)) << log_;
}

TEST_P(Lists, SuccessWithAMisleadingLastError_IsSuccess) {
    ListingSystem system(MultiString({L"C:\\"}));
    system.last_error_on_success = GetParam().misleading_error;
    EXPECT_TRUE(Get());
    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(system.sizes, SizeIs(1));
}

TEST_P(Lists, LengthBeyondTheBufferOnSuccess_IsAnInvalidAnswer) {
    ListingSystem system(MultiString({L"abc"}));
    system.told_length = 0x10000000;
    EXPECT_FALSE(Get());
    EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
}

TEST_P(Lists, AllocationFailsWhileGrowing_IsError14) {
    const ListingSystem system(ListOf(40000));
    const AllocationFailure failing(20000);
    EXPECT_FALSE(Get());
    EXPECT_EQ(error_, 14U);
    EXPECT_EQ(failing.hits(), 1U);
    EXPECT_THAT(log_.all(), Contains(Trace(GetParam().failure_line + "14")));
}

// --- What only one of them does.

class DosDevices : public testing::Test {
protected:
    bool Get(const std::wstring& device) { return WinAPIWrapper::QueryDosDeviceW(device, targets_, error_); }

    LoggerCapture log_;
    Texts targets_;
    DWORD error_ = 0xDEAD;
};

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
    EXPECT_THAT(log_.all(), Contains(Trace("WinAPIWrapper::QueryDosDevice of NULL error=5")));
}

TEST_F(DosDevices, SystemThatAsksForMoreForEver_IsGivenUp) {
    int calls = 0;
    const Stub system(Kernel32DLL::Get().QueryDosDeviceW, [&](const wchar_t*, wchar_t*, DWORD) -> DWORD {
        ++calls;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    });
    EXPECT_FALSE(Get(L"C:"));
    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_THAT(calls, Le(32));
}

// A system whose lists are longer than every buffer. It tells a length for each size of a buffer.
class PathNames : public testing::Test {
protected:
    bool GetFrom(DWORD error, const std::function<DWORD(DWORD size)>& length, DWORD enough = MAXDWORD) {
        const Stub system(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                          [&](const wchar_t* volume, wchar_t* buffer, DWORD size, DWORD* told) -> BOOL {
                              name_ = volume;
                              sizes_.push_back(size);
                              *told = length(size);
                              SetLastError(error);
                              if (size < enough) {
                                  return FALSE;
                              }
                              std::ranges::copy(ListOf(enough), buffer);
                              return TRUE;
                          });
        return WinAPIWrapper::GetVolumePathNamesForVolumeNameW(L"\\\\?\\Volume{a}", paths_, error_);
    }

    std::wstring name_;
    Sizes sizes_;
    Texts paths_;
    DWORD error_ = 0xDEAD;
};

TEST_F(PathNames, ListThatGrowsBetweenTheCalls_IsAskedForAgain) {
    EXPECT_TRUE(GetFrom(
        ERROR_MORE_DATA, [](DWORD size) { return size < 600 ? 600 : 700; }, 700));
    EXPECT_EQ(name_, L"\\\\?\\Volume{a}\\") << "the name gets its backslash";
    EXPECT_THAT(sizes_, ElementsAre(512U, 600U, 700U));
    EXPECT_THAT(paths_, ElementsAre(std::wstring(698, L'x')));
}

TEST_F(PathNames, AnotherTooSmallError_EndsAtOnce) {
    EXPECT_FALSE(GetFrom(ERROR_INSUFFICIENT_BUFFER, [](DWORD) { return 9000; }));
    EXPECT_THAT(sizes_, SizeIs(1));
    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(PathNames, SystemThatAsksForMoreForEver_IsGivenUp) {
    for (const DWORD told : {0U, 1U, 512U, 0xFFFFFFFFU}) {
        sizes_.clear();
        EXPECT_FALSE(GetFrom(ERROR_MORE_DATA, [told](DWORD) { return told; }));
        EXPECT_EQ(error_, DWORD{ERROR_MORE_DATA}) << told;
        EXPECT_THAT(sizes_.size(), Le(32U));
    }
    sizes_.clear();
    EXPECT_FALSE(GetFrom(ERROR_MORE_DATA, [](DWORD size) { return size + 1; }));
    EXPECT_EQ(error_, DWORD{ERROR_MORE_DATA}) << "a little more each time";
    EXPECT_THAT(sizes_.size(), Le(32U));
}

}  // namespace
