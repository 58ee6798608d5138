#include "common/logger/logger.h"

#include "support/debugger_capture.h"

#include <gmock/gmock.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using support::DebuggerCapture;
using testing::ElementsAre;
using testing::IsEmpty;

struct Delivered {
    int level;
    std::wstring text;
    std::size_t length;

    bool operator==(const Delivered&) const = default;
};

void PrintTo(const Delivered& delivered, std::ostream* out) {
    *out << delivered.level << ", " << testing::PrintToString(delivered.text) << ", " << delivered.length;
}

class RecordingLogger : public CLogger {
public:
    void Output(int level, const wchar_t* text, std::size_t length) override {
        delivered.push_back({level, text, length});
    }
    int GetLevel() const override {
        ++level_questions;
        return threshold;
    }

    int threshold = 5;
    mutable int level_questions = 0;
    std::vector<Delivered> delivered;
};

enum class Thrown { kStandard, kForeign, kFromLevel };

class ThrowingLogger : public CLogger {
public:
    explicit ThrowingLogger(Thrown thrown) : thrown_(thrown) {}

    void Output(int /*level*/, const wchar_t* /*text*/, std::size_t /*length*/) override {
        if (thrown_ == Thrown::kForeign) {
            throw 42;
        }
        throw std::runtime_error("the sink is broken");
    }
    int GetLevel() const override {
        if (thrown_ == Thrown::kFromLevel) {
            throw std::runtime_error("no level");
        }
        return 5;
    }

private:
    Thrown thrown_;
};

TEST(Logger, Write_AtTheThreshold_DeliversTheFormattedText) {
    RecordingLogger logger;
    logger.threshold = 3;

    EXPECT_EQ(logger.Write(3, L"%s of %u", L"disk", 7U), 1);

    EXPECT_THAT(logger.delivered, ElementsAre(Delivered{3, L"disk of 7", 9}));
}

TEST(Logger, Write_AboveTheThreshold_IsDropped) {
    RecordingLogger logger;
    logger.threshold = 3;

    EXPECT_EQ(logger.Write(4, L"too quiet"), 0);

    EXPECT_THAT(logger.delivered, IsEmpty());
    EXPECT_EQ(logger.level_questions, 1);
}

TEST(Logger, Write_BelowEveryKnownLevel_IsDelivered) {
    RecordingLogger logger;

    EXPECT_EQ(logger.Write(-2147483647, L"severe"), 1);

    EXPECT_THAT(logger.delivered, ElementsAre(Delivered{-2147483647, L"severe", 6}));
}

TEST(Logger, Write_EmptyMessage_IsDelivered) {
    RecordingLogger logger;

    EXPECT_EQ(logger.Write(2, L"%s", L""), 1);

    EXPECT_THAT(logger.delivered, ElementsAre(Delivered{2, L"", 0}));
}

TEST(Logger, Write_PlatformConversions_AreThoseOfWideFormatting) {
    RecordingLogger logger;

    logger.Write(2, L"%s|%ws|%S|%u|%d|%I64i|%x|%0lX|%.*u|%%", L"wide", L"wide too", "narrow", 4294967295U, -1,
                 -9000000000LL, 0xABCU, 0x8007000EUL, 3, 12U);

    EXPECT_THAT(
        logger.delivered,
        ElementsAre(Delivered{2, L"wide|wide too|narrow|4294967295|-1|-9000000000|abc|8007000E|012|%", 65}));
}

class LoggerLengths : public testing::TestWithParam<std::pair<std::size_t, std::size_t>> {};

TEST_P(LoggerLengths, Write_LongMessage_IsCutAt254Characters) {
    const auto [given, delivered] = GetParam();
    RecordingLogger logger;
    std::wstring text;
    for (std::size_t i = 0; i < given; ++i) {
        text += static_cast<wchar_t>(L'a' + i % 26);
    }

    EXPECT_EQ(logger.Write(2, L"%s", text.c_str()), 1);

    EXPECT_THAT(logger.delivered, ElementsAre(Delivered{2, text.substr(0, delivered), delivered}));
}

INSTANTIATE_TEST_SUITE_P(AroundTheLimit, LoggerLengths,
                         testing::Values(std::pair{253U, 253U}, std::pair{254U, 254U}, std::pair{255U, 254U},
                                         std::pair{256U, 254U}, std::pair{300U, 254U},
                                         std::pair{100000U, 254U}));

TEST(Logger, Write_SomethingThrows_ReturnsZeroAndTellsTheDebuggerTheFormat) {
    for (const Thrown thrown : {Thrown::kStandard, Thrown::kForeign, Thrown::kFromLevel}) {
        ThrowingLogger logger(thrown);
        const DebuggerCapture debugger;
        EXPECT_EQ(logger.Write(5, L"disk %u of %s", 3U, L"x"), 0);
        EXPECT_THAT(debugger.lines(),
                    ElementsAre(L"Exception in CLogger::Write while writing disk %u of %s"));
    }
}

TEST(Logger, Write_OutputThrowsOnALongFormat_CutsTheReportAt254Characters) {
    ThrowingLogger logger(Thrown::kStandard);
    DebuggerCapture debugger;
    const std::wstring format(400, L'f');

    EXPECT_EQ(logger.Write(2, format.c_str()), 0);

    const std::wstring report = L"Exception in CLogger::Write while writing " + format;
    EXPECT_THAT(debugger.lines(), ElementsAre(report.substr(0, 254)));
}

TEST(Logger, WriteTextAsFormat_OutputThrows_TellsTheDebuggerTheTextAsItWasGiven) {
    ThrowingLogger logger(Thrown::kStandard);
    DebuggerCapture debugger;

    EXPECT_EQ(logger.WriteTextAsFormat(2, L"50% of %s, 100%% of %d", 7), 0);

    EXPECT_THAT(debugger.lines(),
                ElementsAre(L"Exception in CLogger::Write while writing 50% of %s, 100%% of %d"));
}

TEST(Logger, WriteTextAsFormat_AboveTheThreshold_IsDropped) {
    RecordingLogger logger;
    logger.threshold = 3;

    EXPECT_EQ(logger.WriteTextAsFormat(4, L"too quiet"), 0);

    EXPECT_THAT(logger.delivered, IsEmpty());
}

TEST(Logger, WriteTextAsFormat_ResultThatGrows_IsCutAt254Characters) {
    RecordingLogger logger;

    EXPECT_EQ(logger.WriteTextAsFormat(2, L"%300d"), 1);

    EXPECT_THAT(logger.delivered, ElementsAre(Delivered{2, std::wstring(254, L' '), 254}));
}

}  // namespace
