#pragma once

#include <string>
#include <utility>

// Thrown by an export that cannot continue.
class OrvaneMainException {
public:
    explicit OrvaneMainException(std::wstring message) : message_(std::move(message)) {}

    const std::wstring& message() const { return message_; }

private:
    std::wstring message_;
};
