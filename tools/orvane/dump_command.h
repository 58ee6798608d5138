#pragma once

#include "tools/orvane/log_sink.h"
#include "tools/orvane/options.h"

#include <functional>
#include <ostream>
#include <string>

namespace host {

// Collects the lines of one dump from the log.
class DumpLines {
public:
    explicit DumpLines(DumpKind kind);

    // Whether the message is a line of the dump, not a trace line, warning or error.
    static bool IsLine(const LogMessage& message);

    void Take(const LogMessage& message);

    // Whether the dump contains a line about its subject, not only its first and last lines, and did not fail
    // with an exception.
    bool told() const { return told_ && !broken_; }
    // All lines, each followed by a line feed.
    const std::string& text() const { return text_; }

private:
    std::string subject_;    // the prefix of a line about the subject
    std::string exception_;  // the error line of a dump that fails with an exception
    bool told_ = false;
    bool broken_ = false;
    std::string text_;
};

// `orvane dump`: writes the lines to `out` or to the selected file, and the errors of the log to `errors`.
// Returns the exit code. Throws LibraryError, machine::DescriptionError and other std::exceptions.
int Dump(const DumpOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace host
