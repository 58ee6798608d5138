#pragma once

#include <string>
#include <utility>

namespace orvane {

// A capture that cannot go on.
class GrabberException {
public:
    explicit GrabberException(std::wstring message) : message_(std::move(message)) {}

    const std::wstring& message() const { return message_; }

private:
    std::wstring message_;
};

}  // namespace orvane
