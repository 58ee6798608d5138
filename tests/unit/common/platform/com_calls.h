#pragma once

#include "common/windows.h"
#include "support/stub.h"

#include <objbase.h>

#include <functional>
#include <string>
#include <vector>

// Replaces COM's initialisation functions in the program's imports. Records every call and returns the
// results set here.
class ComCalls {
public:
    ComCalls();

    HRESULT initialize_result = S_OK;
    HRESULT security_result = S_OK;

    std::vector<DWORD> initialized;  // flags of each CoInitializeEx call
    bool reserved_passed = false;
    int security_calls = 0;
    int uninitialized = 0;

    struct Security {
        bool pointers = true;  // any pointer argument was not null
        LONG services = 0;
        DWORD authentication = 99;
        DWORD impersonation = 99;
        DWORD capabilities = 99;
    };
    Security security;

private:
    template <class Function>
    using Import = support::StubImport<Function, std::function<std::remove_pointer_t<Function>>>;
    Import<decltype(&::CoInitializeEx)> initialize_;
    Import<decltype(&::CoInitializeSecurity)> initialize_security_;
    Import<decltype(&::CoUninitialize)> uninitialize_;
};
