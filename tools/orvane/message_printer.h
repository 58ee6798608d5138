#pragma once

#include "tools/orvane/log_sink.h"

#include <ostream>
#include <set>
#include <string>

namespace host {

// The message as "error: TEXT" and a line feed.
std::string LineOf(const LogMessage& message);

// Prints messages of the log: errors only, or all messages if `verbose`.
class MessagePrinter {
public:
    MessagePrinter(std::ostream& out, bool verbose) : out_(out), verbose_(verbose) {}

    // Whether a message of that level is printed at all.
    bool Shows(const LogMessage& message) const;

    void Print(const LogMessage& message);

    // Prints the same error only once; every time if `verbose`.
    void PrintOnce(const LogMessage& message);

private:
    std::ostream& out_;
    bool verbose_;
    std::set<std::string> shown_;
};

}  // namespace host
