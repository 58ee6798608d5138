#pragma once

#include "orvane/orvane.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <set>
#include <string>

namespace host {

// The host's end of the library's log, for the lifetime of the object; one at a time. Errors go to `errors`
// (all messages when `verbose`), everything to the file. Lines are UTF-8: "error: TEXT".
class LogSink {
public:
    using SetCallback = void (*)(OrvaneEventCallback);

    // Throws UsageError when the file cannot be made.
    LogSink(SetCallback set_callback, std::ostream& errors, bool verbose,
            const std::optional<std::filesystem::path>& file);
    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    // Whether every line reached the file.
    bool file_written();

private:
    static void Receive(std::int32_t level, const char* text);
    void Take(std::int32_t level, const char* text);

    static LogSink* current_;

    SetCallback set_callback_;
    std::ostream& errors_;
    bool verbose_;
    std::ofstream file_;
    // A capture is made of two calls, and the second has the same to complain about.
    std::set<std::string> shown_;
};

}  // namespace host
