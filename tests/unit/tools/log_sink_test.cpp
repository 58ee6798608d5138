#include "tools/orvane/log_sink.h"

#include "tools/orvane/options.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

// The library's side: keeps the callback.
OrvaneEventCallback g_callback = nullptr;

void Install(OrvaneEventCallback callback) {
    g_callback = callback;
}

class LogSinkTest : public testing::Test {
protected:
    ~LogSinkTest() override { std::filesystem::remove(file_); }

    std::string FileContent() const {
        std::ifstream file(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    std::ostringstream errors_;
    const std::filesystem::path file_ = std::filesystem::temp_directory_path() / "orvane-log-sink-test.txt";
};

TEST_F(LogSinkTest, Lifetime_InstallsAndRemovesTheCallback) {
    {
        const host::LogSink sink(&Install, errors_, false, std::nullopt);
        EXPECT_NE(g_callback, nullptr);
    }
    EXPECT_EQ(g_callback, nullptr);
}

TEST_F(LogSinkTest, Quiet_ShowsErrorsAlone) {
    const host::LogSink sink(&Install, errors_, false, std::nullopt);
    for (std::int32_t level = 0; level <= 4; ++level) {
        g_callback(level, ("level " + std::to_string(level)).c_str());
    }
    EXPECT_EQ(errors_.str(), "error: level 3\nerror: level 4\n");
}

TEST_F(LogSinkTest, Quiet_ShowsTheSameErrorOnce) {
    const host::LogSink sink(&Install, errors_, false, std::nullopt);
    g_callback(ORVANE_LEVEL_ERROR, "twice");
    g_callback(ORVANE_LEVEL_ERROR, "once");
    g_callback(ORVANE_LEVEL_ERROR, "twice");
    EXPECT_EQ(errors_.str(), "error: twice\nerror: once\n");
}

TEST_F(LogSinkTest, Verbose_ShowsEverything) {
    const host::LogSink sink(&Install, errors_, true, std::nullopt);
    g_callback(ORVANE_LEVEL_TRACE, "a");
    g_callback(ORVANE_LEVEL_INFORMATION, "b");
    g_callback(ORVANE_LEVEL_WARNING, "c");
    g_callback(ORVANE_LEVEL_ERROR, "d");
    g_callback(ORVANE_LEVEL_ERROR, "d");
    EXPECT_EQ(errors_.str(), "trace: a\ninformation: b\nwarning: c\nerror: d\nerror: d\n");
}

TEST_F(LogSinkTest, LineFeedOfAMessage_IsNotDoubled) {
    const host::LogSink sink(&Install, errors_, true, std::nullopt);
    g_callback(ORVANE_LEVEL_INFORMATION, "Firmware type: UEFI\n");
    EXPECT_EQ(errors_.str(), "information: Firmware type: UEFI\n");
}

TEST_F(LogSinkTest, File_ReceivesEveryLevel) {
    host::LogSink sink(&Install, errors_, false, file_);
    g_callback(ORVANE_LEVEL_TRACE, "a");
    g_callback(ORVANE_LEVEL_ERROR, "b");
    EXPECT_TRUE(sink.file_written());
    EXPECT_EQ(FileContent(), "trace: a\nerror: b\n");
}

TEST_F(LogSinkTest, FileThatCannotBeMade_IsRefused) {
    EXPECT_THROW(host::LogSink(&Install, errors_, false, file_ / "below-a-file" / "log.txt"),
                 host::UsageError);
}

}  // namespace
