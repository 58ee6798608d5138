#include "common/platform/string_conversion.h"

#include "common/windows.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using support::Error;
using support::LoggerCapture;
using support::StubImport;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ConvertWStrToStr, Empty_IsEmptyWithoutAskingTheSystem) {
    LoggerCapture log;
    int calls = 0;
    const StubImport stub("WideCharToMultiByte", &::WideCharToMultiByte,
                          [&](UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*) -> int {
                              ++calls;
                              return 0;
                          });

    EXPECT_EQ(ConvertWStrToStr(L""), "");

    EXPECT_EQ(calls, 0);
    EXPECT_THAT(log.all(), IsEmpty());
}

TEST(ConvertWStrToStr, EmbeddedTerminator_IsConvertedWithTheRest) {
    EXPECT_EQ(ConvertWStrToStr(std::wstring(L"a\0b", 3)), std::string("a\0b", 3));
}

struct CodePageText {
    UINT code_page;
    const wchar_t* wide;
    const char* narrow;
};

class ConvertWStrToStrByCodePage : public testing::TestWithParam<CodePageText> {};

TEST_P(ConvertWStrToStrByCodePage, TextBeyondAscii_IsInTheAnsiCodePage) {
    if (GetACP() != GetParam().code_page) {
        GTEST_SKIP() << "for systems with the code page " << GetParam().code_page;
    }
    EXPECT_EQ(ConvertWStrToStr(GetParam().wide), GetParam().narrow);
}

INSTANTIATE_TEST_SUITE_P(WesternEurope, ConvertWStrToStrByCodePage,
                         testing::Values(CodePageText{1252, L"\x00E4\x00DF\x20AC", "\xE4\xDF\x80"},
                                         CodePageText{1252,
                                                      L"a\x4E2D"
                                                      L"b",
                                                      "a?b"},                   // no similar character
                                         CodePageText{1252, L"\x0100", "A"}));  // a similar character

struct Asked {
    UINT code_page;
    DWORD flags;
    int bytes;
    bool substitute;

    bool operator==(const Asked&) const = default;
};

TEST(ConvertWStrToStr, AnyText_IsMeasuredAndThenConvertedWithoutFlags) {
    std::vector<Asked> asked;
    const StubImport stub(
        "WideCharToMultiByte", &::WideCharToMultiByte,
        [&](UINT code_page, DWORD flags, const wchar_t*, int, char* buffer, int bytes, const char* substitute,
            BOOL* used) -> int {
            asked.push_back({code_page, flags, bytes, substitute != nullptr || used != nullptr});
            for (int i = 0; i < bytes; ++i) {
                buffer[i] = 'z';
            }
            return 5;
        });

    EXPECT_EQ(ConvertWStrToStr(L"abc"), "zzzzz");

    EXPECT_TRUE((asked == std::vector<Asked>{{CP_ACP, 0, 0, false}, {CP_ACP, 0, 5, false}}));
}

class ConvertWStrToStrFailure : public testing::TestWithParam<int> {};

TEST_P(ConvertWStrToStrFailure, SystemFails_LogsAndIsEmpty) {
    LoggerCapture log;
    int call = 0;
    const StubImport stub("WideCharToMultiByte", &::WideCharToMultiByte,
                          [&](UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*) -> int {
                              SetLastError(1113);
                              return ++call == GetParam() ? 0 : 3;
                          });

    EXPECT_EQ(ConvertWStrToStr(L"abc"), "");

    EXPECT_EQ(call, GetParam());
    EXPECT_THAT(log.all(), ElementsAre(Error("ConvertWStrToStr: WideCharToMultiByte failed error = 1113")));
}

INSTANTIATE_TEST_SUITE_P(MeasuringAndConverting, ConvertWStrToStrFailure, testing::Values(1, 2));

}  // namespace
