#pragma once

#include "tools/orvane/log_sink.h"

#include <ostream>
#include <set>
#include <string>

namespace host {

// "error: TEXT", with a line feed.
std::string LineOf(const LogMessage& message);

// Shows messages of the log to people: errors, or with `verbose` everything.
class MessagePrinter {
public:
    MessagePrinter(std::ostream& out, bool verbose) : out_(out), verbose_(verbose) {}

    // Whether a message of that level is shown at all.
    bool Shows(const LogMessage& message) const;

    void Print(const LogMessage& message);

    // The same error is shown once; with `verbose` as often as it comes.
    void PrintOnce(const LogMessage& message);

private:
    std::ostream& out_;
    bool verbose_;
    std::set<std::string> shown_;
};

}  // namespace host
