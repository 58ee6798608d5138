#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

// Log levels as the host's callback receives them.
enum HostLevel : std::int32_t {
    kHostTrace = 0,
    kHostInformation = 1,
    kHostWarning = 2,
    kHostError = 3,
};

struct LogLine {
    std::int32_t level = 0;
    std::string text;

    bool operator==(const LogLine&) const = default;
};
std::ostream& operator<<(std::ostream& out, const LogLine& line);

// Lines to compare with.
inline LogLine Trace(std::string text) {
    return {kHostTrace, std::move(text)};
}
inline LogLine Info(std::string text) {
    return {kHostInformation, std::move(text)};
}
inline LogLine Warning(std::string text) {
    return {kHostWarning, std::move(text)};
}
inline LogLine Error(std::string text) {
    return {kHostError, std::move(text)};
}

// Collects the lines sent to the log callback for its lifetime. Captures nest: only the innermost one
// collects. Destroying it restores the capture around it, or no callback. One thread at a time. Independent
// of the library: `set` is any function that installs a callback, such as the library's export. Unit tests
// use LoggerCapture (logger_capture.h).
class LogCapture {
public:
    using Callback = void (*)(std::int32_t level, const char* text);
    using Setter = void (*)(Callback callback);

    explicit LogCapture(Setter set);
    ~LogCapture();

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // All lines, including trace lines, in order.
    const std::vector<LogLine>& all() const noexcept { return lines_; }
    // All lines except trace lines (host level 0), in order.
    std::vector<LogLine> Messages() const;
    // All lines except the entering and leaving lines, which contain line numbers.
    std::vector<LogLine> Told() const;
    // The texts of the lines of one host level, in order.
    std::vector<std::string> Lines(std::int32_t level) const;
    // True if a line has this level and contains this text.
    bool ContainsPart(std::int32_t level, std::string_view part) const;
    std::size_t Count(std::int32_t level) const;
    std::size_t Count(std::int32_t level, std::string_view text) const;
    void Clear() noexcept { lines_.clear(); }

private:
    static void Collect(std::int32_t level, const char* text) noexcept;

    static LogCapture* innermost_;

    Setter set_;
    LogCapture* outer_;
    std::vector<LogLine> lines_;
};

// Prints the log, one line per message with its level in front; for `EXPECT_TRUE(...) << log`.
std::ostream& operator<<(std::ostream& out, const LogCapture& log);

}  // namespace support
