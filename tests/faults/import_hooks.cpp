#include "faults/import_hooks.h"

#include "faults/dom_hooks.h"
#include "faults/guard_pages.h"
#include "machine/simulation/redirect.h"

#include <oleauto.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>

namespace faults {

namespace {

ImportWatch watch;
bool guarded = false;
std::set<HANDLE> tokens;

// Answers of the system are at least this large. Smaller blocks are not worth two pages each.
constexpr std::size_t kSmallestGuarded = 128;

// --- Memory

void* Counted(void* block) {
    watch.balance.heap_blocks += block != nullptr ? 1 : 0;
    return block;
}

bool OutOfMemory() {
    return watch.allocations.Step();
}

bool IsGuarded(std::size_t size) {
    return guarded && size >= kSmallestGuarded;
}

void* WINAPI WatchedHeapAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
    if (OutOfMemory()) {
        return nullptr;
    }
    return Counted(IsGuarded(size) ? AllocateGuarded(size) : ::HeapAlloc(heap, flags, size));
}

BOOL WINAPI WatchedHeapFree(HANDLE heap, DWORD flags, void* block) {
    if (block == nullptr) {
        return TRUE;
    }
    --watch.balance.heap_blocks;
    return FreeGuarded(block) ? TRUE : ::HeapFree(heap, flags, block);
}

SIZE_T WINAPI WatchedHeapSize(HANDLE heap, DWORD flags, const void* block) {
    const std::size_t guarded_size = GuardedSize(const_cast<void*>(block));
    return guarded_size != 0 ? guarded_size : ::HeapSize(heap, flags, block);
}

BSTR WINAPI WatchedSysAllocString(const OLECHAR* text) {
    return OutOfMemory() ? nullptr : ::SysAllocString(text);
}

BSTR WINAPI WatchedSysAllocStringLen(const OLECHAR* text, UINT length) {
    return OutOfMemory() ? nullptr : ::SysAllocStringLen(text, length);
}

// --- All other imports: fail with the code of the function's family, or call the real function.

template <class Body>
HRESULT ComCall(Body&& body) {
    return watch.imports.Step() ? static_cast<HRESULT>(watch.codes.com) : body();
}

template <class Body>
LSTATUS RegistryCall(Body&& body) {
    return watch.imports.Step() ? static_cast<LSTATUS>(watch.codes.win32) : body();
}

// Win32 functions that return 0 and set the last error.
template <class Body>
auto Win32Call(Body&& body) -> decltype(body()) {
    if (watch.imports.Step()) {
        SetLastError(watch.codes.win32);
        return {};
    }
    return body();
}

HRESULT WINAPI WatchedCoInitializeEx(void* reserved, DWORD model) {
    return ComCall([&] {
        const HRESULT result = ::CoInitializeEx(reserved, model);
        watch.balance.com_initialisations += SUCCEEDED(result) ? 1 : 0;
        return result;
    });
}

void WINAPI WatchedCoUninitialize() {
    --watch.balance.com_initialisations;
    ::CoUninitialize();
}

HRESULT WINAPI WatchedCoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                           SOLE_AUTHENTICATION_SERVICE* list, void* reserved1,
                                           DWORD authentication, DWORD impersonation, void* information,
                                           DWORD capabilities, void* reserved2) {
    return ComCall([&] {
        return ::CoInitializeSecurity(descriptor, services, list, reserved1, authentication, impersonation,
                                      information, capabilities, reserved2);
    });
}

HRESULT WINAPI WatchedCoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                       void** object) {
    return ComCall([&] {
        const HRESULT result = ::CoCreateInstance(clsid, outer, context, iid, object);
        if (SUCCEEDED(result) && object != nullptr) {
            WatchDocument(clsid, static_cast<IUnknown*>(*object));
        }
        return result;
    });
}

HRESULT WINAPI WatchedCoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorization,
                                        OLECHAR* name, DWORD level, DWORD impersonation, void* information,
                                        DWORD capabilities) {
    return ComCall([&] {
        return ::CoSetProxyBlanket(proxy, authentication, authorization, name, level, impersonation,
                                   information, capabilities);
    });
}

// Always the same sequence, so that documents can be compared.
std::uint32_t guids = 0;

HRESULT WINAPI WatchedCoCreateGuid(GUID* guid) {
    return ComCall([&] {
        *guid = {++guids, 0x1234, 0x4321, {1, 2, 3, 4, 5, 6, 7, 8}};
        return S_OK;
    });
}

HRESULT WINAPI WatchedOleRun(IUnknown* object) {
    return ComCall([&] { return ::OleRun(object); });
}

HRESULT WINAPI WatchedSafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    return ComCall([&] { return ::SafeArrayGetLBound(array, dimension, bound); });
}

HRESULT WINAPI WatchedSafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    return ComCall([&] { return ::SafeArrayGetUBound(array, dimension, bound); });
}

HRESULT WINAPI WatchedSafeArrayAccessData(SAFEARRAY* array, void** data) {
    return ComCall([&] { return ::SafeArrayAccessData(array, data); });
}

LSTATUS WINAPI WatchedRegOpenKeyExW(HKEY key, LPCWSTR name, DWORD options, REGSAM access, PHKEY opened) {
    return RegistryCall([&] {
        const LSTATUS result = ::RegOpenKeyExW(key, name, options, access, opened);
        watch.balance.registry_keys += result == ERROR_SUCCESS ? 1 : 0;
        return result;
    });
}

LSTATUS WINAPI WatchedRegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD name_size, LPDWORD reserved,
                                    LPDWORD type, LPBYTE data, LPDWORD data_size) {
    return RegistryCall(
        [&] { return ::RegEnumValueW(key, index, name, name_size, reserved, type, data, data_size); });
}

LSTATUS WINAPI WatchedRegCloseKey(HKEY key) {
    // The key is closed even if the call fails.
    --watch.balance.registry_keys;
    const LSTATUS result = ::RegCloseKey(key);
    return RegistryCall([&] { return result; });
}

BOOL WINAPI WatchedOpenProcessToken(HANDLE process, DWORD access, PHANDLE token) {
    return Win32Call([&] {
        const BOOL done = ::OpenProcessToken(process, access, token);
        if (done != FALSE) {
            tokens.insert(*token);
            ++watch.balance.tokens;
        }
        return done;
    });
}

// Never fails: the library closes only its token here.
BOOL WINAPI WatchedCloseHandle(HANDLE handle) {
    watch.balance.tokens -= static_cast<std::int64_t>(tokens.erase(handle));
    return ::CloseHandle(handle);
}

BOOL WINAPI WatchedLookupPrivilegeValueW(LPCWSTR system, LPCWSTR name, PLUID value) {
    return Win32Call([&] { return ::LookupPrivilegeValueW(system, name, value); });
}

BOOL WINAPI WatchedAdjustTokenPrivileges(HANDLE token, BOOL disable, PTOKEN_PRIVILEGES privileges, DWORD size,
                                         PTOKEN_PRIVILEGES former, PDWORD needed) {
    return Win32Call(
        [&] { return ::AdjustTokenPrivileges(token, disable, privileges, size, former, needed); });
}

int WINAPI WatchedMultiByteToWideChar(UINT page, DWORD flags, LPCSTR text, int length, LPWSTR wide,
                                      int size) {
    return Win32Call([&] { return ::MultiByteToWideChar(page, flags, text, length, wide, size); });
}

int WINAPI WatchedWideCharToMultiByte(UINT page, DWORD flags, LPCWCH wide, int length, LPSTR text, int size,
                                      LPCCH substitute, LPBOOL used) {
    return Win32Call(
        [&] { return ::WideCharToMultiByte(page, flags, wide, length, text, size, substitute, used); });
}

template <class Function>
void Hook(HMODULE module, const char* name, Function replacement) {
    const auto proc = reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(replacement));
    if (machine::RedirectImport(module, name, proc) == nullptr) {
        throw std::runtime_error(std::string("the library does not import ") + name);
    }
}

}  // namespace

ImportWatch& Watch() {
    return watch;
}

void ResetGuids() {
    guids = 0;
}

void InstallImportHooks(HMODULE module) {
    Hook(module, "HeapAlloc", &WatchedHeapAlloc);
    Hook(module, "HeapFree", &WatchedHeapFree);
    Hook(module, "HeapSize", &WatchedHeapSize);
    Hook(module, "SysAllocString", &WatchedSysAllocString);
    Hook(module, "SysAllocStringLen", &WatchedSysAllocStringLen);
    Hook(module, "CoInitializeEx", &WatchedCoInitializeEx);
    Hook(module, "CoUninitialize", &WatchedCoUninitialize);
    Hook(module, "CoInitializeSecurity", &WatchedCoInitializeSecurity);
    Hook(module, "CoCreateInstance", &WatchedCoCreateInstance);
    Hook(module, "CoSetProxyBlanket", &WatchedCoSetProxyBlanket);
    Hook(module, "CoCreateGuid", &WatchedCoCreateGuid);
    Hook(module, "OleRun", &WatchedOleRun);
    Hook(module, "SafeArrayGetLBound", &WatchedSafeArrayGetLBound);
    Hook(module, "SafeArrayGetUBound", &WatchedSafeArrayGetUBound);
    Hook(module, "SafeArrayAccessData", &WatchedSafeArrayAccessData);
    Hook(module, "RegOpenKeyExW", &WatchedRegOpenKeyExW);
    Hook(module, "RegEnumValueW", &WatchedRegEnumValueW);
    Hook(module, "RegCloseKey", &WatchedRegCloseKey);
    Hook(module, "OpenProcessToken", &WatchedOpenProcessToken);
    Hook(module, "CloseHandle", &WatchedCloseHandle);
    Hook(module, "LookupPrivilegeValueW", &WatchedLookupPrivilegeValueW);
    Hook(module, "AdjustTokenPrivileges", &WatchedAdjustTokenPrivileges);
    Hook(module, "MultiByteToWideChar", &WatchedMultiByteToWideChar);
    Hook(module, "WideCharToMultiByte", &WatchedWideCharToMultiByte);
    WatchDocumentsOf(module);
}

GuardedHeap::GuardedHeap() {
    guarded = true;
}

GuardedHeap::~GuardedHeap() {
    guarded = false;
}

}  // namespace faults
