#include "tools/orvane/log_sink.h"

#include "tools/orvane/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

// Replaces the library's setter: stores the callback.
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

    host::LogSink::Listener Listener() {
        return [this](const host::LogMessage& message) {
            heard_.push_back(std::to_string(message.level) + " " + message.text);
        };
    }

    std::vector<std::string> heard_;
    const std::filesystem::path file_ = std::filesystem::temp_directory_path() / "orvane-log-sink-test.txt";
};

TEST_F(LogSinkTest, Lifetime_InstallsAndRemovesTheCallback) {
    {
        const host::LogSink sink(&Install, std::nullopt, Listener());
        EXPECT_NE(g_callback, nullptr);
    }
    EXPECT_EQ(g_callback, nullptr);
}

TEST_F(LogSinkTest, Listener_HearsEveryLevelInOrder) {
    const host::LogSink sink(&Install, std::nullopt, Listener());
    for (std::int32_t level = 0; level <= 4; ++level) {
        g_callback(level, "text");
    }
    EXPECT_THAT(heard_, ElementsAre("0 text", "1 text", "2 text", "3 text", "4 text"));
}

TEST_F(LogSinkTest, LineFeedAtTheEnd_IsLeftOut) {
    const host::LogSink sink(&Install, std::nullopt, Listener());
    g_callback(ORVANE_LEVEL_INFORMATION, "Firmware type: UEFI\n");
    g_callback(ORVANE_LEVEL_INFORMATION, "two\nlines\r\n");
    g_callback(ORVANE_LEVEL_INFORMATION, "");
    EXPECT_THAT(heard_, ElementsAre("1 Firmware type: UEFI", "1 two\nlines", "1 "));
}

TEST_F(LogSinkTest, ListenerThatThrows_DoesNotReachTheLibrary) {
    const host::LogSink sink(&Install, std::nullopt,
                             [](const host::LogMessage&) { throw std::runtime_error("no"); });
    EXPECT_NO_THROW(g_callback(ORVANE_LEVEL_ERROR, "text"));
}

TEST_F(LogSinkTest, File_ReceivesEveryLevel) {
    host::LogSink sink(&Install, file_, Listener());
    g_callback(ORVANE_LEVEL_TRACE, "a");
    g_callback(ORVANE_LEVEL_ERROR, "b\n");
    sink.RequireWritten();
    EXPECT_EQ(FileContent(), "trace: a\nerror: b\n");
    EXPECT_THAT(heard_, ElementsAre("0 a", "3 b"));
}

TEST_F(LogSinkTest, NoFile_NeedsNothingWritten) {
    host::LogSink sink(&Install, std::nullopt, Listener());
    EXPECT_NO_THROW(sink.RequireWritten());
}

TEST_F(LogSinkTest, FileThatCannotBeMade_IsRefused) {
    EXPECT_THROW(host::LogSink(&Install, file_ / "below-a-file" / "log.txt", Listener()), host::UsageError);
}

}  // namespace
