#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// Levels as the host's callback receives them.
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

// Collects what goes to the log callback while it lives. Captures nest: the innermost collects, and its end
// gives the callback back to the one around it; the end of the outermost leaves no callback. One thread at a
// time. Knows nothing of the library: `set` is whatever installs a callback (the library's export, a lambda
// over the logger; unit tests take LoggerCapture of logger_capture.h).
class LogCapture {
public:
    using Callback = void (*)(std::int32_t level, const char* text);
    using Setter = void (*)(Callback callback);

    explicit LogCapture(Setter set);
    ~LogCapture();

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Everything, in order, trace lines included.
    const std::vector<LogLine>& all() const noexcept { return lines_; }
    // Everything but the trace lines (host level 0), in order.
    std::vector<LogLine> Messages() const;
    // The texts of one host level, in order.
    std::vector<std::string> Lines(std::int32_t level) const;
    // A line of that level with exactly this text.
    bool Contains(std::int32_t level, std::string_view text) const;
    // A line of that level with this text somewhere in it.
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

// One line of the log a line, its level in front; for `EXPECT_TRUE(...) << log`.
std::ostream& operator<<(std::ostream& out, const LogCapture& log);

}  // namespace support
