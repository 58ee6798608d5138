#include "support/debugger_capture.h"

#include <exception>
#include <stdexcept>

namespace support {

DebuggerCapture* DebuggerCapture::current_ = nullptr;

DebuggerCapture::DebuggerCapture(HMODULE module) : import_("OutputDebugStringW", &Collect, module) {
    if (current_ != nullptr) {
        throw std::logic_error("the debugger output is captured already");
    }
    current_ = this;
}

DebuggerCapture::~DebuggerCapture() {
    current_ = nullptr;
}

void WINAPI DebuggerCapture::Collect(const wchar_t* text) {
    try {
        if (current_ != nullptr) {
            current_->lines_.emplace_back(text);
        }
    } catch (const std::exception&) {
        return;  // the real function reports no error either
    }
}

}  // namespace support
