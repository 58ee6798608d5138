#pragma once

#include <string>
#include <utility>

namespace orvane {

// Thrown by a capture that cannot continue.
class GrabberException {
public:
    explicit GrabberException(std::wstring message) : message_(std::move(message)) {}

    const std::wstring& message() const { return message_; }

private:
    std::wstring message_;
};

}  // namespace orvane
