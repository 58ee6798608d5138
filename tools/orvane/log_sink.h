#pragma once

#include "orvane/orvane.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

namespace host {

// One message of the library's log: UTF-8, without the line feed that some messages end in.
struct LogMessage {
    std::int32_t level = ORVANE_LEVEL_TRACE;
    std::string text;
};

// The host's end of the library's log, for the lifetime of the object; one at a time. Every message goes to
// the listener, and to the file as "error: TEXT".
class LogSink {
public:
    using SetCallback = void (*)(OrvaneEventCallback);
    using Listener = std::function<void(const LogMessage& message)>;

    // Throws UsageError when the file cannot be made.
    LogSink(SetCallback set_callback, const std::optional<std::filesystem::path>& file, Listener listener);
    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    // Throws std::runtime_error unless every line reached the file.
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
