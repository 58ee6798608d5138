#include "machine/simulation/redirect.h"

#include "machine/description/text.h"
#include "machine/simulation/simulated_functions.h"
#include "machine/simulation/simulation.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>

namespace machine {
namespace {

// Initialised before any redirection, including one of this module's own import. Looked up at run time,
// because &::GetProcAddress is the address of a jump through the import; once that is redirected, the jump
// leads back here in an endless recursion.
const auto real_get_proc_address = reinterpret_cast<decltype(&::GetProcAddress)>(
    reinterpret_cast<void (*)()>(::GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetProcAddress")));

template <class Function>
FARPROC AsProc(Function function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

using FunctionMap = std::unordered_map<std::string, FARPROC>;

const FunctionMap& KernelFunctions() {
    static const FunctionMap functions = {
        {"CreateFileW", AsProc(&simulated::CreateFileW)},
        {"CloseHandle", AsProc(&simulated::CloseHandle)},
        {"DeviceIoControl", AsProc(&simulated::DeviceIoControl)},
        {"FlushFileBuffers", AsProc(&simulated::FlushFileBuffers)},
        {"WriteFile", AsProc(&simulated::WriteFile)},
        {"FindFirstVolumeW", AsProc(&simulated::FindFirstVolumeW)},
        {"FindNextVolumeW", AsProc(&simulated::FindNextVolumeW)},
        {"FindVolumeClose", AsProc(&simulated::FindVolumeClose)},
        {"GetVolumePathNamesForVolumeNameW", AsProc(&simulated::GetVolumePathNamesForVolumeNameW)},
        {"GetVolumeNameForVolumeMountPointW", AsProc(&simulated::GetVolumeNameForVolumeMountPointW)},
        {"GetVolumePathNameW", AsProc(&simulated::GetVolumePathNameW)},
        {"QueryDosDeviceW", AsProc(&simulated::QueryDosDeviceW)},
        {"GetLogicalDrives", AsProc(&simulated::GetLogicalDrives)},
        {"GetDriveTypeW", AsProc(&simulated::GetDriveTypeW)},
        {"GetDiskFreeSpaceW", AsProc(&simulated::GetDiskFreeSpaceW)},
        {"GetDiskFreeSpaceExW", AsProc(&simulated::GetDiskFreeSpaceExW)},
        {"GetVolumeInformationW", AsProc(&simulated::GetVolumeInformationW)},
        {"GetFirmwareType", AsProc(&simulated::GetFirmwareType)},
        {"GetFirmwareEnvironmentVariableW", AsProc(&simulated::GetFirmwareEnvironmentVariableW)},
    };
    return functions;
}

const FunctionMap& NativeFunctions() {
    static const FunctionMap functions = {
        {"ZwOpenDirectoryObject", AsProc(&simulated::ZwOpenDirectoryObject)},
        {"ZwQueryDirectoryObject", AsProc(&simulated::ZwQueryDirectoryObject)},
        {"ZwClose", AsProc(&simulated::ZwClose)},
    };
    return functions;
}

// Null for modules that are not simulated.
const FunctionMap* FunctionsOf(HMODULE module) {
    if (module == nullptr) {
        return nullptr;
    }
    if (module == GetModuleHandleW(L"kernel32.dll") || module == GetModuleHandleW(L"kernelbase.dll")) {
        return &KernelFunctions();
    }
    return module == GetModuleHandleW(L"ntdll.dll") ? &NativeFunctions() : nullptr;
}

bool IsOrdinal(LPCSTR name) {
    return reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF;
}

FARPROC Found(HMODULE module, const FunctionMap& functions, const char* name) {
    const auto function = functions.find(name);
    if (function == functions.end()) {
        return real_get_proc_address(module, name);
    }
    return function->second;
}

template <class T>
T* At(std::uint8_t* base, std::uintptr_t offset) {
    return reinterpret_cast<T*>(base + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* ImportDescriptors(std::uint8_t* base) {
    const auto* dos = At<IMAGE_DOS_HEADER>(base, 0);
    if (dos->e_magic != IMAGE_DOS_SIGNATURE) {
        return nullptr;
    }
    const auto* headers = At<IMAGE_NT_HEADERS>(base, static_cast<std::uintptr_t>(dos->e_lfanew));
    if (headers->Signature != IMAGE_NT_SIGNATURE) {
        return nullptr;
    }
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return directory.VirtualAddress == 0 ? nullptr
                                         : At<IMAGE_IMPORT_DESCRIPTOR>(base, directory.VirtualAddress);
}

IMAGE_THUNK_DATA* FindImport(std::uint8_t* base, const IMAGE_IMPORT_DESCRIPTOR& library,
                             const char* function) {
    // Old linkers omit the import names; nothing can be searched then.
    if (library.OriginalFirstThunk == 0) {
        return nullptr;
    }
    const auto* name = At<IMAGE_THUNK_DATA>(base, library.OriginalFirstThunk);
    auto* target = At<IMAGE_THUNK_DATA>(base, library.FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++target) {
        if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) &&
            std::strcmp(At<IMAGE_IMPORT_BY_NAME>(base, name->u1.AddressOfData)->Name, function) == 0) {
            return target;
        }
    }
    return nullptr;
}

FARPROC Replace(IMAGE_THUNK_DATA& thunk, FARPROC replacement) {
    const auto previous = reinterpret_cast<FARPROC>(thunk.u1.Function);
    DWORD protection = 0;
    if (!VirtualProtect(&thunk, sizeof(thunk), PAGE_READWRITE, &protection)) {
        return nullptr;
    }
    thunk.u1.Function = reinterpret_cast<ULONGLONG>(replacement);
    VirtualProtect(&thunk, sizeof(thunk), protection, &protection);
    return previous;
}

}  // namespace

FARPROC RealProcAddress(HMODULE module, const char* name) {
    return real_get_proc_address(module, name);
}

FARPROC RedirectImport(HMODULE module, const char* function, FARPROC replacement) {
    if (module == nullptr) {
        return nullptr;
    }
    auto* base = reinterpret_cast<std::uint8_t*>(module);
    const IMAGE_IMPORT_DESCRIPTOR* library = ImportDescriptors(base);
    FARPROC previous = nullptr;
    for (; library != nullptr && library->FirstThunk != 0; ++library) {
        if (IMAGE_THUNK_DATA* thunk = FindImport(base, *library, function)) {
            previous = Replace(*thunk, replacement);
        }
    }
    return previous;
}

FARPROC WINAPI SimulatedProcAddress(HMODULE module, LPCSTR name) {
    const FunctionMap* functions = IsOrdinal(name) ? nullptr : FunctionsOf(module);
    if (functions == nullptr) {
        return real_get_proc_address(module, name);
    }
    return Simulated(
        Simulation::Current(), "GetProcAddress", FARPROC{nullptr},
        [&] { return Found(module, *functions, name); },
        [&](CallFrame& frame) {
            FARPROC found = nullptr;
            const Answer answer = frame.Perform(Widen(name), nullptr, [&] {
                const bool missing = frame.simulation().machine().missing.contains(name);
                found = missing ? nullptr : Found(module, *functions, name);
                return found == nullptr ? Answer::Failure(ERROR_PROC_NOT_FOUND) : Answer{};
            });
            return answer.failed ? nullptr : found;
        });
}

bool PutModuleOnSimulation(HMODULE module) {
    return RedirectImport(module, "GetProcAddress", AsProc(&SimulatedProcAddress)) != nullptr;
}

}  // namespace machine
