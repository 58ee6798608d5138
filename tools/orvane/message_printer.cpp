#include "tools/orvane/message_printer.h"

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

}  // namespace

std::string LineOf(const LogMessage& message) {
    return std::string(LevelName(message.level)) + ": " + message.text + '\n';
}

bool MessagePrinter::Shows(const LogMessage& message) const {
    return verbose_ || message.level >= ORVANE_LEVEL_ERROR;
}

void MessagePrinter::Print(const LogMessage& message) {
    if (Shows(message)) {
        out_ << LineOf(message);
    }
}

void MessagePrinter::PrintOnce(const LogMessage& message) {
    if (Shows(message) && (verbose_ || shown_.insert(message.text).second)) {
        Print(message);
    }
}

}  // namespace host
