#include "common/logger/debug_logger.h"

#include "support/debugger_capture.h"

#include <gtest/gtest.h>

#include <ctime>
#include <regex>
#include <string>

namespace {

using support::DebuggerCapture;

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

TEST(DebugLogger, Output_Text_GetsALineEndUnlessItHasOne) {
    for (const std::wstring text : {L"the text", L"the text\n", L""}) {
        const DebuggerCapture debugger;
        CDebugLogger().Output(2, text.c_str(), text.size());
        EXPECT_EQ(TextAfterStamp(debugger), text.ends_with(L'\n') ? text : text + L'\n');
    }
}

}  // namespace
