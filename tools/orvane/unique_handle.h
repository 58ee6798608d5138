#pragma once

#include "common/windows.h"

namespace host {

// An open handle of the system, or none.
class Handle {
public:
    Handle() = default;
    ~Handle() { Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool is_open() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }
    HANDLE* put() { return &handle_; }

    void Close() {
        if (is_open()) {
            CloseHandle(handle_);
        }
        handle_ = nullptr;
    }

private:
    HANDLE handle_ = nullptr;
};

}  // namespace host
