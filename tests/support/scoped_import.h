#pragma once

#include "common/windows.h"
#include "machine/simulation/redirect.h"

#include <stdexcept>
#include <string>

namespace support {

// During its lifetime, a module (by default the test program) calls `replacement` instead of the imported
// `function`. The replacement is a plain function pointer, so its state must be static. Throws
// std::runtime_error if the module does not import the function, because such a test would test nothing.
template <class Function>
class ScopedImport {
public:
    ScopedImport(const char* function, Function replacement, HMODULE module = GetModuleHandleW(nullptr))
        : module_(module), function_(function) {
        previous_ = machine::RedirectImport(module_, function_, AsProc(replacement));
        if (previous_ == nullptr) {
            throw std::runtime_error(std::string("not imported: ") + function_);
        }
    }
    ~ScopedImport() { machine::RedirectImport(module_, function_, previous_); }

    ScopedImport(const ScopedImport&) = delete;
    ScopedImport& operator=(const ScopedImport&) = delete;

    // The function that the module called before.
    Function previous() const noexcept {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(previous_));
    }

private:
    static FARPROC AsProc(Function function) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
    }

    HMODULE module_;
    const char* function_;
    FARPROC previous_ = nullptr;
};

}  // namespace support
