#pragma once

#include "common/windows.h"
#include "support/scoped_import.h"

#include <string>
#include <vector>

namespace support {

// Collects what a module (by default the test program) writes with OutputDebugStringW. Nothing reaches the
// debugger meanwhile. One at a time.
class DebuggerCapture {
public:
    explicit DebuggerCapture(HMODULE module = GetModuleHandleW(nullptr));
    ~DebuggerCapture();

    DebuggerCapture(const DebuggerCapture&) = delete;
    DebuggerCapture& operator=(const DebuggerCapture&) = delete;

    const std::vector<std::wstring>& lines() const noexcept { return lines_; }
    void Clear() noexcept { lines_.clear(); }

private:
    static void WINAPI Collect(const wchar_t* text);

    static DebuggerCapture* current_;

    std::vector<std::wstring> lines_;
    ScopedImport<decltype(&OutputDebugStringW)> import_;
};

}  // namespace support
