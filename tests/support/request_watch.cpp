#include "support/request_watch.h"

#include "machine/description/control_codes.h"
#include "machine/description/text.h"
#include "machine/simulation/redirect.h"

#include <objbase.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <map>
#include <regex>
#include <stdexcept>
#include <utility>

namespace support {

namespace {

Requests requests;

template <class Function>
FARPROC AsProc(Function function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

// The function that a hook replaced.
template <auto Hook>
decltype(Hook) original = nullptr;

template <auto Hook>
void Keep(FARPROC function) {
    original<Hook> = reinterpret_cast<decltype(Hook)>(reinterpret_cast<void (*)()>(function));
}

void Note(std::string kind) {
    requests.kinds.insert(std::move(kind));
}

std::string Hexadecimal(std::uint32_t number) {
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(number));
    return text.data();
}

std::string FileAccess(DWORD access) {
    switch (access) {
        case 0:
            return "for no access";
        case GENERIC_READ:
            return "for reading";
        case GENERIC_READ | GENERIC_WRITE:
            return "for reading and writing";
        default:
            return "for access " + Hexadecimal(access);
    }
}

HANDLE WINAPI WatchedCreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                 DWORD disposition, DWORD flags, HANDLE model) {
    requests.opened.insert(path);
    Note("CreateFileW " + FileAccess(access) + (disposition == OPEN_EXISTING ? "" : ", creating") +
         ((flags & FILE_FLAG_DELETE_ON_CLOSE) == 0 ? "" : ", deleting"));
    return original<&WatchedCreateFileW>(path, access, share, security, disposition, flags, model);
}

BOOL WINAPI WatchedDeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD input_size, LPVOID output,
                                   DWORD output_size, LPDWORD returned, LPOVERLAPPED overlapped) {
    Note("DeviceIoControl " + machine::ControlName(code));
    return original<&WatchedDeviceIoControl>(handle, code, input, input_size, output, output_size, returned,
                                             overlapped);
}

LSTATUS WINAPI WatchedRegOpenKeyExW(HKEY key, LPCWSTR name, DWORD options, REGSAM access, PHKEY opened) {
    const std::string parent = key == HKEY_LOCAL_MACHINE ? "HKEY_LOCAL_MACHINE" : "another key";
    const bool reading = (access & ~static_cast<REGSAM>(KEY_READ)) == 0;
    Note("RegOpenKeyExW " + parent + '\\' + machine::Narrow(name) +
         (reading ? " for reading" : " for access " + Hexadecimal(access)));
    return original<&WatchedRegOpenKeyExW>(key, name, options, access, opened);
}

BOOL WINAPI WatchedOpenProcessToken(HANDLE process, DWORD access, PHANDLE token) {
    Note(process == GetCurrentProcess() ? "OpenProcessToken" : "OpenProcessToken of another process");
    return original<&WatchedOpenProcessToken>(process, access, token);
}

BOOL WINAPI WatchedAdjustTokenPrivileges(HANDLE token, BOOL disable, PTOKEN_PRIVILEGES privileges, DWORD size,
                                         PTOKEN_PRIVILEGES former, PDWORD needed) {
    for (DWORD i = 0; privileges != nullptr && i < privileges->PrivilegeCount; ++i) {
        std::array<wchar_t, 64> name{};
        auto length = static_cast<DWORD>(name.size());
        LUID_AND_ATTRIBUTES& row = privileges->Privileges[i];
        LookupPrivilegeNameW(nullptr, &row.Luid, name.data(), &length);
        const bool enables = disable == FALSE && row.Attributes == SE_PRIVILEGE_ENABLED;
        Note(std::string("AdjustTokenPrivileges ") + (enables ? "enables " : "changes ") +
             machine::Narrow(name.data()));
    }
    return original<&WatchedAdjustTokenPrivileges>(token, disable, privileges, size, former, needed);
}

HMODULE WINAPI WatchedLoadLibraryW(LPCWSTR name) {
    Note("LoadLibraryW " + machine::Narrow(name));
    return original<&WatchedLoadLibraryW>(name);
}

HRESULT WINAPI WatchedCoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                       void** object) {
    std::array<wchar_t, 40> text{};
    StringFromGUID2(clsid, text.data(), static_cast<int>(text.size()));
    Note("CoCreateInstance " + machine::Narrow(text.data()));
    return original<&WatchedCoCreateInstance>(clsid, outer, context, iid, object);
}

HRESULT WINAPI WatchedCoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                           SOLE_AUTHENTICATION_SERVICE* list, void* reserved1,
                                           DWORD authentication, DWORD impersonation, void* information,
                                           DWORD capabilities, void* reserved2) {
    Note("CoInitializeSecurity");
    return original<&WatchedCoInitializeSecurity>(descriptor, services, list, reserved1, authentication,
                                                  impersonation, information, capabilities, reserved2);
}

HRESULT WINAPI WatchedCoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorization,
                                        OLECHAR* name, DWORD level, DWORD impersonation, void* information,
                                        DWORD capabilities) {
    Note("CoSetProxyBlanket");
    return original<&WatchedCoSetProxyBlanket>(proxy, authentication, authorization, name, level,
                                               impersonation, information, capabilities);
}

BOOL WINAPI WatchedSetThreadErrorMode(DWORD mode, LPDWORD former) {
    Note("SetThreadErrorMode");
    return original<&WatchedSetThreadErrorMode>(mode, former);
}

struct Hook {
    const char* name;
    FARPROC replacement;
    void (*keep)(FARPROC function);
};

template <auto Function>
Hook HookOf(const char* name) {
    return {name, AsProc(Function), &Keep<Function>};
}

const Hook kImports[] = {
    HookOf<&WatchedRegOpenKeyExW>("RegOpenKeyExW"),
    HookOf<&WatchedOpenProcessToken>("OpenProcessToken"),
    HookOf<&WatchedAdjustTokenPrivileges>("AdjustTokenPrivileges"),
    HookOf<&WatchedLoadLibraryW>("LoadLibraryW"),
    HookOf<&WatchedCoCreateInstance>("CoCreateInstance"),
    HookOf<&WatchedCoInitializeSecurity>("CoInitializeSecurity"),
    HookOf<&WatchedCoSetProxyBlanket>("CoSetProxyBlanket"),
    HookOf<&WatchedSetThreadErrorMode>("SetThreadErrorMode"),
};

const Hook kLookedUp[] = {
    HookOf<&WatchedCreateFileW>("CreateFileW"),
    HookOf<&WatchedDeviceIoControl>("DeviceIoControl"),
};

constexpr const char* kChangingImports[] = {
    "RegCreateKeyW", "RegLoadKeyW", "RegSetValueExW", "RegUnLoadKeyW", "fputc",
    "fputs",         "fwrite",      "vfprintf",       "_close",        "_read",
};
constexpr const char* kChangingLookedUp[] = {
    "CreateDirectoryW", "CreateHardLinkW",  "CreateProcessW", "CreateWaitableTimerA", "DefineDosDeviceW",
    "FlushFileBuffers", "SetWaitableTimer", "WriteFile",      "SetFileAttributesW",   "GetExitCodeProcess",
};

// Instead of a changing function: notes it, and returns 0. The caller of a function cleans up its arguments,
// so one function without arguments replaces all.
template <const auto& kNames, std::size_t kIndex>
std::uintptr_t WINAPI Refuse() {
    Note(kNames[kIndex]);
    SetLastError(ERROR_ACCESS_DENIED);
    return 0;
}

template <const auto& kNames, std::size_t... kIndices>
std::map<std::string, FARPROC> Refusals(std::index_sequence<kIndices...> /*indices*/) {
    return {{kNames[kIndices], AsProc(&Refuse<kNames, kIndices>)}...};
}

const std::map<std::string, FARPROC> kRefusedImports =
    Refusals<kChangingImports>(std::make_index_sequence<std::size(kChangingImports)>());
const std::map<std::string, FARPROC> kRefusedLookedUp =
    Refusals<kChangingLookedUp>(std::make_index_sequence<std::size(kChangingLookedUp)>());

FARPROC WINAPI WatchedGetProcAddress(HMODULE module, LPCSTR name) {
    const FARPROC found = original<&WatchedGetProcAddress>(module, name);
    if (found == nullptr) {
        return nullptr;
    }
    if (const auto refused = kRefusedLookedUp.find(name); refused != kRefusedLookedUp.end()) {
        return refused->second;
    }
    for (const Hook& hook : kLookedUp) {
        if (name == std::string_view(hook.name)) {
            hook.keep(found);
            return hook.replacement;
        }
    }
    return found;
}

FARPROC Redirect(HMODULE module, const char* name, FARPROC replacement) {
    const FARPROC former = machine::RedirectImport(module, name, replacement);
    if (former == nullptr) {
        throw std::runtime_error(std::string("the library does not import ") + name);
    }
    return former;
}

void Install(HMODULE module, const Hook& hook) {
    hook.keep(Redirect(module, hook.name, hook.replacement));
}

}  // namespace

void Requests::Clear() {
    kinds.clear();
    opened.clear();
}

Requests& RequestsOfLibrary() {
    return requests;
}

bool IsDiskOrVolume(const std::wstring& name) {
    static const std::wregex known(
        LR"(\\\\\.\\PhysicalDrive\d+|\\\\\?\\Volume\{[0-9a-fA-F-]{36}\}\\?|\\\\\.\\[A-Z]:|)"
        LR"(\\\\\?\\GLOBALROOT\\Device\\[^\\]+)");
    // The fault tests ask for the same few names again and again.
    static std::set<std::wstring> matched;
    if (matched.contains(name)) {
        return true;
    }
    const bool matches = std::regex_match(name, known);
    if (matches) {
        matched.insert(name);
    }
    return matches;
}

void WatchRequests(HMODULE module) {
    Install(module, HookOf<&WatchedGetProcAddress>("GetProcAddress"));
    for (const Hook& hook : kImports) {
        Install(module, hook);
    }
    for (const auto& [name, refusal] : kRefusedImports) {
        Redirect(module, name.c_str(), refusal);
    }
}

const std::vector<std::string>& ChangingFunctions() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all(std::begin(kChangingImports), std::end(kChangingImports));
        all.insert(all.end(), std::begin(kChangingLookedUp), std::end(kChangingLookedUp));
        return all;
    }();
    return names;
}

}  // namespace support
