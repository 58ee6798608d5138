// The process's logger without a callback: it writes stamped lines to the debugger output, and formats the
// finished text a second time.

#include "common/logger/orvane_logger.h"
#include "support/debugger_capture.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using support::DebuggerCapture;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr std::size_t kStampCharacters = 23;

// The debugger line of a level 2 message with this finished text, without stamp and line end.
std::wstring Fallback(const std::wstring& finished) {
    const DebuggerCapture debugger;
    OrvaneLogger logger;
    EXPECT_EQ(logger.Write(2, L"%s", finished.c_str()), 1);
    if (debugger.lines().size() != 1 || debugger.lines()[0].size() <= kStampCharacters) {
        ADD_FAILURE() << "not one line: " << testing::PrintToString(debugger.lines());
        return {};
    }
    const std::wstring line = debugger.lines()[0].substr(kStampCharacters);
    EXPECT_EQ(line.back(), L'\n');
    return line.substr(0, line.size() - 1);
}

TEST(Fallback, Write_LevelTwo_IsOneStampedLine) {
    const DebuggerCapture debugger;
    OrvaneLogger logger;

    logger.Write(2, L"disk %u", 3U);

    ASSERT_THAT(debugger.lines(), SizeIs(1));
    const std::string line(debugger.lines()[0].begin(), debugger.lines()[0].end());
    EXPECT_THAT(line, MatchesRegex("\\d\\d/\\d\\d/\\d\\d\\d\\d \\d\\d:\\d\\d:\\d\\d .M disk 3\n"));
}

TEST(Fallback, Write_LevelsUpToThree_AreAllDelivered) {
    const DebuggerCapture debugger;
    OrvaneLogger logger;

    for (const int level : {-1, 0, 1, 2, 3}) {
        EXPECT_EQ(logger.Write(level, L"message"), 1);
    }

    EXPECT_THAT(debugger.lines(), SizeIs(5));
}

TEST(Fallback, Write_LevelsFourAndFive_ReachNobody) {
    const DebuggerCapture debugger;
    OrvaneLogger logger;

    logger.Write(4, L"information");
    logger.Write(5, L"trace");

    EXPECT_THAT(debugger.lines(), IsEmpty());
}

TEST(Fallback, Write_MessageThatEndsItsLine_GetsNoSecondLineEnd) {
    EXPECT_EQ(Fallback(L"text\n"), L"text");
}

TEST(Fallback, Write_CharacterOutsideTheLocale_IsNotConverted) {
    EXPECT_EQ(Fallback(L"\x4E2D"), L"\x4E2D");
}

struct SecondFormatting {
    const wchar_t* finished;
    const wchar_t* shown;
};

class FallbackFormats : public testing::TestWithParam<SecondFormatting> {};

TEST_P(FallbackFormats, Write_PercentSignInTheFinishedText_IsReadAsAConversionOfTheLength) {
    EXPECT_EQ(Fallback(GetParam().finished), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Table, FallbackFormats,
                         testing::Values(SecondFormatting{L"%d", L"2"},                   //
                                         SecondFormatting{L"length %d", L"length 9"},     //
                                         SecondFormatting{L"length %u.", L"length 10."},  //
                                         SecondFormatting{L"0123456789 %x", L"0123456789 d"},
                                         SecondFormatting{L"%05d", L"00004"},   //
                                         SecondFormatting{L"%-4d|", L"5   |"},  //
                                         SecondFormatting{L"%I64i", L"5"},      //
                                         SecondFormatting{L"100%%", L"100%"},   //
                                         SecondFormatting{L"%% and %d", L"% and 9"}));

// A conversion that would read a pointer argument is not expanded.
class FallbackPointers : public testing::TestWithParam<const wchar_t*> {};

TEST_P(FallbackPointers, Write_ConversionOfAPointerInTheFinishedText_StandsAsItIs) {
    EXPECT_EQ(Fallback(GetParam()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, FallbackPointers,
                         testing::Values(L"%s", L"%S", L"%ls", L"%hs", L"%ws", L"%n", L"%hn", L"%Z", L"%10s",
                                         L"%-10.3s", L"a %s b %S c %n d", L"%*d", L"%.*d"));

TEST(Fallback, Write_MoreConversionsThanArguments_IsHarmless) {
    std::wstring finished;
    for (int i = 0; i < 100; ++i) {
        finished += L"%d";
    }
    EXPECT_EQ(Fallback(finished).substr(0, 3), L"200");
}

TEST(Fallback, Write_FinishedTextThatEndsInAPercentSign_IsHarmless) {
    EXPECT_EQ(Fallback(L"at 50%").substr(0, 5), L"at 50");
}

TEST(Fallback, Write_SecondFormattingGrowsTheText_IsCutAt254Characters) {
    EXPECT_EQ(Fallback(L"%200d%200d"), std::wstring(198, L' ') + L"10" + std::wstring(54, L' '));
}

TEST(Fallback, Write_HugeWidthInTheFinishedText_IsHarmless) {
    EXPECT_LE(Fallback(L"x%2000000000d").size(), 254U);
}

}  // namespace
