#include "common/logger/debug_logger.h"

#include "support/debugger_capture.h"

#include <gmock/gmock.h>

#include <ctime>
#include <cwchar>
#include <regex>
#include <string>

namespace {

using support::DebuggerCapture;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t kStampCharacters = 23;  // "03/07/2021 02:05:09 PM "

const std::wregex& StampPattern() {
    static const std::wregex pattern(
        L"(0[1-9]|1[0-2])/(0[1-9]|[12][0-9]|3[01])/[0-9]{4} "
        L"(0[1-9]|1[0-2]):[0-5][0-9]:[0-5][0-9] (AM|PM) ");
    return pattern;
}

// The time in a stamp, which is local time.
std::time_t MomentOf(const std::wstring& stamp) {
    std::tm local{};
    wchar_t half[3] = {};
    if (std::swscanf(stamp.c_str(), L"%d/%d/%d %d:%d:%d %2ls", &local.tm_mon, &local.tm_mday, &local.tm_year,
                     &local.tm_hour, &local.tm_min, &local.tm_sec, half) != 7) {
        return -1;
    }
    local.tm_mon -= 1;
    local.tm_year -= 1900;
    local.tm_hour = local.tm_hour % 12 + (half[0] == L'P' ? 12 : 0);
    local.tm_isdst = -1;
    return std::mktime(&local);
}

// The only line in the debugger output, without its stamp.
std::wstring TextAfterStamp(const DebuggerCapture& debugger) {
    if (debugger.lines().size() != 1 || debugger.lines()[0].size() < kStampCharacters) {
        ADD_FAILURE() << "not one stamped line: " << testing::PrintToString(debugger.lines());
        return {};
    }
    const std::wstring& line = debugger.lines()[0];
    EXPECT_TRUE(std::regex_match(line.substr(0, kStampCharacters), StampPattern()))
        << testing::PrintToString(line);
    return line.substr(kStampCharacters);
}

TEST(DebugLogger, GetLevel_Always_IsThree) {
    EXPECT_EQ(CDebugLogger().GetLevel(), 3);
}

TEST(DebugLogger, FormatTime_Now_IsTheLocalTimeOnATwelveHourClock) {
    std::wstring stamp = L"what was there before";
    const std::time_t before = std::time(nullptr);
    CDebugLogger().FormatTime(stamp);
    const std::time_t after = std::time(nullptr);

    ASSERT_TRUE(std::regex_match(stamp, StampPattern())) << testing::PrintToString(stamp);
    EXPECT_GE(MomentOf(stamp), before);
    EXPECT_LE(MomentOf(stamp), after);
}

TEST(DebugLogger, Output_TextWithoutLineEnd_GetsOne) {
    DebuggerCapture debugger;
    CDebugLogger().Output(2, L"the text", 8);

    EXPECT_EQ(TextAfterStamp(debugger), L"the text\n");
}

TEST(DebugLogger, Output_TextWithLineEnd_KeepsTheOne) {
    DebuggerCapture debugger;
    CDebugLogger().Output(2, L"the text\n", 9);

    EXPECT_EQ(TextAfterStamp(debugger), L"the text\n");
}

TEST(DebugLogger, Output_EmptyText_IsTheStampAndALineEnd) {
    DebuggerCapture debugger;
    CDebugLogger().Output(2, L"", 0);

    EXPECT_EQ(TextAfterStamp(debugger), L"\n");
}

TEST(DebugLogger, Output_TextWithPercentSign_IsNotFormatted) {
    DebuggerCapture debugger;
    CDebugLogger().Output(2, L"100%d", 5);

    EXPECT_EQ(TextAfterStamp(debugger), L"100%d\n");
}

TEST(DebugLogger, Write_LevelThree_IsTheLastThatIsDelivered) {
    DebuggerCapture debugger;

    EXPECT_EQ(CDebugLogger().Write(3, L"warning %d", 1), 1);

    EXPECT_EQ(TextAfterStamp(debugger), L"warning 1\n");
}

TEST(DebugLogger, Write_LevelsFourAndFive_AreDropped) {
    DebuggerCapture debugger;

    EXPECT_EQ(CDebugLogger().Write(4, L"information"), 0);
    EXPECT_EQ(CDebugLogger().Write(5, L"trace"), 0);

    EXPECT_THAT(debugger.lines(), IsEmpty());
}

TEST(DebugLogger, Output_OneMessage_IsOneCallOfTheDebugger) {
    DebuggerCapture debugger;
    CDebugLogger().Output(1, std::wstring(254, L'x').c_str(), 254);

    EXPECT_THAT(debugger.lines(), SizeIs(1));
    EXPECT_EQ(TextAfterStamp(debugger), std::wstring(254, L'x') + L"\n");
}

}  // namespace
