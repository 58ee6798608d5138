#include "tools/orvane/log_sink.h"

#include "machine/description/text.h"
#include "tools/orvane/message_printer.h"
#include "tools/orvane/options.h"
#include "tools/orvane/text_encoding.h"

#include <stdexcept>

namespace host {

namespace {

std::string WithoutLineFeed(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    return text;
}

}  // namespace

LogSink* LogSink::current_ = nullptr;

LogSink::LogSink(SetCallback set_callback, const std::optional<std::filesystem::path>& file,
                 Listener listener)
    : set_callback_(set_callback), listener_(std::move(listener)) {
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

void LogSink::RequireWritten() {
    if (file_.is_open() && !file_.flush()) {
        throw std::runtime_error("the log cannot be written");
    }
}

void LogSink::Receive(std::int32_t level, const char* text) {
    try {
        current_->Take({level, WithoutLineFeed(FromLocale(text))});
    } catch (...) {  // NOLINT(bugprone-empty-catch): no exception may cross the library
    }
}

void LogSink::Take(const LogMessage& message) {
    if (file_.is_open()) {
        file_ << LineOf(message);
    }
    listener_(message);
}

}  // namespace host
