#include "tools/orvane/progress_line.h"

#include "common/windows.h"
#include "documents/text/utf8.h"

#include <io.h>

#include <cstdio>

namespace host {

namespace {

constexpr std::size_t kWidth = 78;
constexpr ULONGLONG kInterval = 100;  // milliseconds

}  // namespace

ProgressLine::ProgressLine(std::ostream& errors) : errors_(errors), shown_(_isatty(_fileno(stderr)) != 0) {}

ProgressLine::~ProgressLine() {
    if (shown_) {
        Overwrite("");
        errors_ << '\r' << std::flush;
    }
}

void ProgressLine::Show(const std::string& text) {
    const ULONGLONG now = GetTickCount64();
    if (shown_ && now >= next_time_) {
        next_time_ = now + kInterval;
        Overwrite(text);
    }
}

void ProgressLine::Overwrite(const std::string& text) {
    std::string line = documents::Escaped(text).substr(0, kWidth);
    line.resize(kWidth, ' ');
    errors_ << '\r' << line << std::flush;
}

}  // namespace host
