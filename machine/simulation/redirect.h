#pragma once

#include "common/windows.h"

namespace machine {

// Replaces the import of `function` in `module` by `replacement`. `module` is an executable or library that
// is loaded in this process; the function is found by name, in imports from any library. Imports of other
// modules are not changed. Returns the previous target, or null if the import does not exist or cannot be
// replaced.
FARPROC RedirectImport(HMODULE module, const char* function, FARPROC replacement);

// GetProcAddress for redirected modules. Functions of kernel32 and ntdll that are simulated answer from the
// current simulation, or from the real system if there is none. Functions that the current description lists
// as missing are not found (null, error 127). All other functions are the real ones.
FARPROC WINAPI SimulatedProcAddress(HMODULE module, LPCSTR name);

// The real GetProcAddress, unaffected by redirection.
FARPROC RealProcAddress(HMODULE module, const char* name);

// The real function of a loaded system library; null if the library does not export it.
template <class Function>
Function RealFunction(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(RealProcAddress(GetModuleHandleW(library), name)));
}

// Redirects the module's import of GetProcAddress, so that functions which it looks up from now on come from
// the simulation. Returns false if the module does not import GetProcAddress.
bool PutModuleOnSimulation(HMODULE module);

}  // namespace machine
