#include "common/logger/orvane_logger.h"

#include "support/debugger_capture.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <clocale>
#include <stdexcept>
#include <string>

namespace {

using support::DebuggerCapture;
using support::Error;
using support::LoggerCapture;
using support::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

// Logged before main, while the order of static initialisation is undefined.
const int early_result = GetLogger().Write(kLogTrace, L"before main");

// Sets the C runtime's locale for its lifetime.
class ScopedLocale {
public:
    explicit ScopedLocale(const char* name)
        : previous_(std::setlocale(LC_ALL, nullptr)), known_(std::setlocale(LC_ALL, name) != nullptr) {}
    ~ScopedLocale() { std::setlocale(LC_ALL, previous_.c_str()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

    bool known() const { return known_; }

private:
    std::string previous_;
    bool known_;
};

const LogLine kConversionAssertion{2, "ASSERTION FAILED, src/common/logger:79 !err"};

TEST(OrvaneLogger, GetLogger_BeforeMain_WorksAlready) {
    EXPECT_EQ(early_result, 1);
}

TEST(OrvaneLogger, GetLogger_Twice_IsTheSameLogger) {
    EXPECT_EQ(&GetLogger(), &GetLogger());
}

TEST(OrvaneLogger, GetLevel_Always_IsFive) {
    EXPECT_EQ(OrvaneLogger().GetLevel(), 5);
}

class OrvaneLoggerLevels : public testing::TestWithParam<std::pair<int, std::int32_t>> {};

TEST_P(OrvaneLoggerLevels, Write_WithCallback_MapsTheLevel) {
    const auto [level, host_level] = GetParam();
    LoggerCapture log;

    EXPECT_EQ(GetLogger().Write(level, L"level %d", level), 1);

    EXPECT_THAT(log.all(), ElementsAre(LogLine{host_level, "level " + std::to_string(level)}));
}

INSTANTIATE_TEST_SUITE_P(All, OrvaneLoggerLevels,
                         testing::Values(std::pair{1, 4}, std::pair{2, 3}, std::pair{3, 2}, std::pair{4, 1},
                                         std::pair{5, 0}, std::pair{0, 3}, std::pair{-1, 3},
                                         std::pair{-2147483647 - 1, 3}));

TEST(OrvaneLogger, Output_LevelAboveFive_MapsToThree) {
    LoggerCapture log;

    GetLogger().Output(6, L"six", 3);
    GetLogger().Output(2147483647, L"most", 4);

    EXPECT_THAT(log.all(), ElementsAre(Error("six"), Error("most")));
}

// In every locale the text ends at its terminator, whatever the length argument says.
TEST(OrvaneLogger, Output_LengthShorterThanTheText_CutsNothing) {
    LoggerCapture log;

    GetLogger().Output(2, L"ASCII text", 5);
    GetLogger().Output(2, L"caf\xE9 noir", 4);

    EXPECT_THAT(log.all(), ElementsAre(Error("ASCII text"), Error("caf\xE9 noir")));
}

TEST(OrvaneLogger, Output_LengthLongerThanTheText_EndsAtTheTerminator) {
    LoggerCapture log;

    GetLogger().Output(2, L"ASCII\0behind it", 15);
    GetLogger().Output(2, L"caf\xE9\0behind it", 14);

    EXPECT_THAT(log.all(), ElementsAre(Error("ASCII"), Error("caf\xE9")));
}

TEST(OrvaneLogger, Output_TextLongerThanAMessage_BecomesTheAssertion) {
    LoggerCapture log;
    const std::wstring longest(254, L'x');
    const std::wstring too_long(255, L'x');

    GetLogger().Output(2, longest.c_str(), longest.size());
    GetLogger().Output(2, too_long.c_str(), too_long.size());

    EXPECT_THAT(log.all(), ElementsAre(Error(std::string(254, 'x')), kConversionAssertion));
}

// ASCII text is unchanged in every locale, with single-byte or double-byte characters.
class OrvaneLoggerLocales : public testing::TestWithParam<const char*> {};

TEST_P(OrvaneLoggerLocales, Write_AsciiText_IsTheSame) {
    const ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.known());
    LoggerCapture log;
    std::wstring text;
    for (wchar_t letter = 1; letter <= 0x7F; ++letter) {
        text += letter;
    }

    GetLogger().Write(2, L"%s", text.c_str());

    EXPECT_THAT(log.all(), ElementsAre(Error(std::string(text.begin(), text.end()))));
}

INSTANTIATE_TEST_SUITE_P(All, OrvaneLoggerLocales, testing::Values("C", ".1252", ".932", ".437", ".1251"));

TEST(OrvaneLogger, Write_LevelSix_IsDropped) {
    LoggerCapture log;

    EXPECT_EQ(GetLogger().Write(6, L"six"), 0);

    EXPECT_THAT(log.all(), IsEmpty());
}

TEST(OrvaneLogger, Write_300Characters_ReachTheCallbackAs254) {
    LoggerCapture log;
    const std::wstring text(300, L'n');

    GetLogger().Write(2, L"%s", text.c_str());

    EXPECT_THAT(log.all(), ElementsAre(Error(std::string(254, 'n'))));
}

TEST(OrvaneLogger, Write_PercentSignsInTheFinishedText_ReachTheCallbackUnchanged) {
    LoggerCapture log;

    GetLogger().Write(2, L"%s", L"100%d %s %%");

    EXPECT_THAT(log.all(), ElementsAre(Error("100%d %s %%")));
}

TEST(OrvaneLogger, Write_CharacterOutsideTheLocale_BecomesTheAssertion) {
    LoggerCapture log;

    EXPECT_EQ(GetLogger().Write(2, L"label \x4E2D"), 1);

    EXPECT_THAT(log.all(), ElementsAre(kConversionAssertion));
}

TEST(OrvaneLogger, Write_CharacterOutsideTheLocaleAtTraceLevel_BecomesTheAssertionAtItsOwnLevel) {
    LoggerCapture log;

    GetLogger().Write(5, L"\x4E2D");

    EXPECT_THAT(log.all(), ElementsAre(kConversionAssertion));
}

TEST(OrvaneLogger, Write_CharacterOfTheLocale_IsConverted) {
    const ScopedLocale locale(".1252");
    ASSERT_TRUE(locale.known());
    LoggerCapture log;

    GetLogger().Write(2, L"\x20AC");

    EXPECT_THAT(log.all(), ElementsAre(Error("\x80")));
}

TEST(OrvaneLogger, Write_NarrowTextLongerThanItsBuffer_BecomesTheAssertion) {
    const ScopedLocale locale(".932");
    ASSERT_TRUE(locale.known());
    LoggerCapture log;
    const std::wstring two_bytes_each(128, L'\x4E2D');  // 256 bytes, one more than fits

    GetLogger().Write(2, L"%s", two_bytes_each.substr(1).c_str());
    GetLogger().Write(2, L"%s", two_bytes_each.c_str());

    std::string fits;
    for (int i = 0; i < 127; ++i) {
        fits += "\x92\x86";
    }
    EXPECT_THAT(log.all(), ElementsAre(Error(fits), kConversionAssertion));
}

TEST(OrvaneLogger, SetCallback_Another_ReplacesTheFirst) {
    LoggerCapture first;
    {
        LoggerCapture second;
        GetLogger().Write(2, L"to the second");
        EXPECT_THAT(second.all(), ElementsAre(Error("to the second")));
    }
    GetLogger().Write(2, L"to the first");

    EXPECT_THAT(first.all(), ElementsAre(Error("to the first")));
}

TEST(OrvaneLogger, Write_CallbackThrows_ReturnsZeroAndTellsTheDebugger) {
    const DebuggerCapture debugger;
    OrvaneLogger logger;
    logger.SetCallback([](std::int32_t, const char*) { throw std::runtime_error("host"); });

    EXPECT_EQ(logger.Write(2, L"message %d", 1), 0);

    EXPECT_THAT(debugger.lines(), ElementsAre(L"Exception in CLogger::Write while writing message %d"));
}

TEST(OrvaneLogger, LogAssertionFailure_Always_NamesSourceLineAndCondition) {
    LoggerCapture log;

    LogAssertionFailure(L"src/common/disk", 12, L"size > 0");

    EXPECT_THAT(log.all(), ElementsAre(LogLine{2, "ASSERTION FAILED, src/common/disk:12 size > 0"}));
}

}  // namespace
