#pragma once

#include "orvane/orvane.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

namespace host {

// One message of the library's log, in UTF-8, without a trailing line feed.
struct LogMessage {
    std::int32_t level = ORVANE_LEVEL_TRACE;
    std::string text;
};

// Receives the library's log for the lifetime of the object; only one may exist at a time. Passes every
// message to the listener and writes it to the file as "error: TEXT".
class LogSink {
public:
    using SetCallback = void (*)(OrvaneEventCallback);
    using Listener = std::function<void(const LogMessage& message)>;

    // Throws UsageError if the file cannot be created.
    LogSink(SetCallback set_callback, const std::optional<std::filesystem::path>& file, Listener listener);
    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    // Flushes the file. Throws std::runtime_error if a line could not be written.
    void RequireWritten();

private:
    static void Receive(std::int32_t level, const char* text);
    void Take(const LogMessage& message);

    static LogSink* current_;

    SetCallback set_callback_;
    Listener listener_;
    std::ofstream file_;
};

}  // namespace host
