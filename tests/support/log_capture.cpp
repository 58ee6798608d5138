#include "support/log_capture.h"

#include <algorithm>
#include <exception>

namespace support {

LogCapture* LogCapture::innermost_ = nullptr;

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
    return out << "[" << line.level << "] \"" << line.text << "\"";
}

std::ostream& operator<<(std::ostream& out, const LogCapture& log) {
    out << "the log, " << log.all().size() << " lines:";
    for (const LogLine& line : log.all()) {
        out << "\n  " << line;
    }
    return out << "\n";
}

LogCapture::LogCapture(Setter set) : set_(set), outer_(innermost_) {
    innermost_ = this;
    set_(&LogCapture::Collect);
}

LogCapture::~LogCapture() {
    innermost_ = outer_;
    set_(outer_ == nullptr ? nullptr : &LogCapture::Collect);
}

// Called from the library, whose frames an exception must not pass.
void LogCapture::Collect(std::int32_t level, const char* text) noexcept {
    if (innermost_ == nullptr) {
        return;
    }
    try {
        innermost_->lines_.push_back({level, text == nullptr ? "(null)" : text});
    } catch (const std::exception&) {
        // The line is lost if the test makes allocations fail. Tests that check lines do not do that.
        return;
    }
}

std::vector<LogLine> LogCapture::Messages() const {
    std::vector<LogLine> messages;
    std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(messages),
                 [](const LogLine& line) { return line.level != kHostTrace; });
    return messages;
}

std::vector<LogLine> LogCapture::Told() const {
    std::vector<LogLine> told = lines_;
    std::erase_if(told, [](const LogLine& line) {
        return line.text.starts_with("Entering function ") || line.text.starts_with("Leaving function ");
    });
    return told;
}

std::vector<std::string> LogCapture::Lines(std::int32_t level) const {
    std::vector<std::string> texts;
    for (const LogLine& line : lines_) {
        if (line.level == level) {
            texts.push_back(line.text);
        }
    }
    return texts;
}

bool LogCapture::ContainsPart(std::int32_t level, std::string_view part) const {
    return std::any_of(lines_.begin(), lines_.end(), [&](const LogLine& line) {
        return line.level == level && line.text.find(part) != std::string::npos;
    });
}

std::size_t LogCapture::Count(std::int32_t level) const {
    return Lines(level).size();
}

std::size_t LogCapture::Count(std::int32_t level, std::string_view text) const {
    return static_cast<std::size_t>(std::count_if(lines_.begin(), lines_.end(), [&](const LogLine& line) {
        return line.level == level && line.text == text;
    }));
}

}  // namespace support
