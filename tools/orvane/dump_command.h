#pragma once

#include "tools/orvane/log_sink.h"
#include "tools/orvane/options.h"

#include <functional>
#include <ostream>
#include <string>

namespace host {

// The lines of one dump, as they come out of the log.
class DumpLines {
public:
    explicit DumpLines(DumpKind kind);

    // Whether the message is one of the dump's lines, and not a remark beside them.
    static bool IsLine(const LogMessage& message);

    void Take(const LogMessage& message);

    // Whether a line came that tells of the dump's subject, and not just of its beginning and end, and the
    // dump did not break off.
    bool told() const { return told_ && !broken_; }
    // All lines, each ended by a line feed.
    const std::string& text() const { return text_; }

private:
    std::string subject_;    // what such a line begins with
    std::string exception_;  // what the library says where the dump breaks off
    bool told_ = false;
    bool broken_ = false;
    std::string text_;
};

// `orvane dump`: writes the lines to `out` or the chosen file, the log's errors to `errors`. Returns the exit
// code. Throws LibraryError, machine::DescriptionError and other std::exceptions.
int Dump(const DumpOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace host
