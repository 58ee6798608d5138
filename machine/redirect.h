#pragma once

#include "common/windows.h"

namespace machine {

// Lets `module` (an executable or a library, loaded in this process) call `replacement` where it imports
// `function` by name, from whichever library. Returns the previous target, or null when the module does not
// import the function. Static imports of other modules are not touched.
FARPROC RedirectImport(HMODULE module, const char* function, FARPROC replacement);

// GetProcAddress as a module on the simulation sees it: the simulated functions of kernel32 and ntdll answer
// from the current simulation (from the real system when there is none), functions that the current
// description calls missing are not found (null, error 127), everything else is the real function.
FARPROC WINAPI SimulatedProcAddress(HMODULE module, LPCSTR name);

// GetProcAddress, whatever has been redirected since.
FARPROC RealProcAddress(HMODULE module, const char* name);

// The real function of a loaded system library; null when the system lacks it.
template <class Function>
Function RealFunction(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(RealProcAddress(GetModuleHandleW(library), name)));
}

// From now on the functions that `module` looks up itself come from the simulation. False when the module
// does not import GetProcAddress.
bool PutModuleOnSimulation(HMODULE module);

}  // namespace machine
