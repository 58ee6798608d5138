#include "tools/orvane/log_sink.h"

#include "machine/text.h"
#include "tools/orvane/options.h"
#include "tools/orvane/text_encoding.h"

namespace host {

namespace {

const char* LevelName(std::int32_t level) {
    switch (level) {
        case ORVANE_LEVEL_TRACE:
            return "trace";
        case ORVANE_LEVEL_INFORMATION:
            return "information";
        case ORVANE_LEVEL_WARNING:
            return "warning";
        default:
            return "error";
    }
}

// Some messages bring their own line feed.
std::string LineOf(std::int32_t level, const char* text) {
    std::string line = std::string(LevelName(level)) + ": " + FromLocale(text);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    return line + '\n';
}

}  // namespace

LogSink* LogSink::current_ = nullptr;

LogSink::LogSink(SetCallback set_callback, std::ostream& errors, bool verbose,
                 const std::optional<std::filesystem::path>& file)
    : set_callback_(set_callback), errors_(errors), verbose_(verbose) {
    if (file) {
        file_.open(*file, std::ios::binary);
        if (!file_) {
            throw UsageError(machine::Narrow(file->wstring()) + ": the log cannot be written");
        }
    }
    current_ = this;
    set_callback_(&Receive);
}

LogSink::~LogSink() {
    set_callback_(nullptr);
    current_ = nullptr;
}

bool LogSink::file_written() {
    return !file_.is_open() || file_.flush().good();
}

void LogSink::Receive(std::int32_t level, const char* text) {
    try {
        current_->Take(level, text);
    } catch (
        ...) {  // NOLINT(bugprone-empty-catch): nothing may pass through the library, and nobody else listens
    }
}

void LogSink::Take(std::int32_t level, const char* text) {
    const std::string line = LineOf(level, text);
    if (file_.is_open()) {
        file_ << line;
    }
    if (verbose_ || (level >= ORVANE_LEVEL_ERROR && shown_.insert(line).second)) {
        errors_ << line;
    }
}

}  // namespace host
