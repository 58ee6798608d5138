#pragma once

#include "support/scoped_import.h"

#include <objbase.h>

// Functions of the system that fail for a module (by default the test program), each as long as the returned
// object lives.
namespace support {

// CoInitializeEx fails: out of memory.
inline auto RefuseCom(HMODULE module = GetModuleHandleW(nullptr)) {
    const auto refuse = [](void*, DWORD) -> HRESULT { return E_OUTOFMEMORY; };
    return ScopedImport("CoInitializeEx", +refuse, module);
}

// CoCreateGuid fails, and leaves something in the GUID.
inline auto RefuseGuids(HMODULE module = GetModuleHandleW(nullptr)) {
    const auto refuse = [](GUID* guid) -> HRESULT {
        guid->Data1 = 7;
        return E_FAIL;
    };
    return ScopedImport("CoCreateGuid", +refuse, module);
}

// WideCharToMultiByte fails with error 87.
inline auto RefuseConversions() {
    const auto refuse = [](UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*) -> int {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    };
    return ScopedImport("WideCharToMultiByte", +refuse);
}

}  // namespace support
