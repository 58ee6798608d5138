#include "bench/call_tape.h"

#include "machine/simulation/redirect.h"

#include <objbase.h>
#include <winternl.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

using Playback = CallTape::Playback;

CallTape* tape = nullptr;

// The simulated function that the recording function calls.
template <class Function>
Function Simulated(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(machine::SimulatedProcAddress(GetModuleHandleW(library), name)));
}

#define ORVANE_SIMULATED(name) static const auto call = Simulated<decltype(&::name)>(L"kernel32.dll", #name)

std::wstring Text(LPCWSTR text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

HANDLE WINAPI RecordCreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                DWORD disposition, DWORD flags, HANDLE model) {
    ORVANE_SIMULATED(CreateFileW);
    const HANDLE handle = call(path, access, share, security, disposition, flags, model);
    const std::size_t place = tape->PlaceOf(handle);
    tape->Add(0, [=, path = Text(path)](Playback& playback) {
        playback.handles[place] = call(path.c_str(), access, share, nullptr, disposition, flags, nullptr);
    });
    return handle;
}

BOOL WINAPI RecordCloseHandle(HANDLE handle) {
    ORVANE_SIMULATED(CloseHandle);
    const std::size_t place = tape->Find(handle);
    tape->Add(0, [=](Playback& playback) { call(playback.handles[place]); });
    return call(handle);
}

BOOL WINAPI RecordDeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD input_size, LPVOID output,
                                  DWORD output_size, LPDWORD returned, LPOVERLAPPED overlapped) {
    ORVANE_SIMULATED(DeviceIoControl);
    const std::size_t place = tape->Find(handle);
    tape->Add(output_size, [=](Playback& playback) {
        DWORD length = 0;
        call(playback.handles[place], code, nullptr, 0, playback.Answer<void>(), output_size, &length,
             nullptr);
    });
    return call(handle, code, input, input_size, output, output_size, returned, overlapped);
}

HANDLE WINAPI RecordFindFirstVolumeW(LPWSTR name, DWORD size) {
    ORVANE_SIMULATED(FindFirstVolumeW);
    const HANDLE handle = call(name, size);
    const std::size_t place = tape->PlaceOf(handle);
    tape->Add(size * sizeof(wchar_t),
              [=](Playback& playback) { playback.handles[place] = call(playback.Answer<wchar_t>(), size); });
    return handle;
}

BOOL WINAPI RecordFindNextVolumeW(HANDLE search, LPWSTR name, DWORD size) {
    ORVANE_SIMULATED(FindNextVolumeW);
    const std::size_t place = tape->Find(search);
    tape->Add(size * sizeof(wchar_t),
              [=](Playback& playback) { call(playback.handles[place], playback.Answer<wchar_t>(), size); });
    return call(search, name, size);
}

BOOL WINAPI RecordFindVolumeClose(HANDLE search) {
    ORVANE_SIMULATED(FindVolumeClose);
    const std::size_t place = tape->Find(search);
    tape->Add(0, [=](Playback& playback) { call(playback.handles[place]); });
    return call(search);
}

BOOL WINAPI RecordGetVolumePathNamesForVolumeNameW(LPCWSTR volume, LPWCH names, DWORD size, PDWORD needed) {
    ORVANE_SIMULATED(GetVolumePathNamesForVolumeNameW);
    tape->Add(size * sizeof(wchar_t), [=, volume = Text(volume)](Playback& playback) {
        DWORD length = 0;
        call(volume.c_str(), playback.Answer<wchar_t>(), size, &length);
    });
    return call(volume, names, size, needed);
}

BOOL WINAPI RecordGetVolumeNameForVolumeMountPointW(LPCWSTR path, LPWSTR name, DWORD size) {
    ORVANE_SIMULATED(GetVolumeNameForVolumeMountPointW);
    tape->Add(size * sizeof(wchar_t), [=, path = Text(path)](Playback& playback) {
        call(path.c_str(), playback.Answer<wchar_t>(), size);
    });
    return call(path, name, size);
}

DWORD WINAPI RecordQueryDosDeviceW(LPCWSTR device, LPWSTR targets, DWORD size) {
    ORVANE_SIMULATED(QueryDosDeviceW);
    tape->Add(size * sizeof(wchar_t), [=, all = device == nullptr, name = Text(device)](Playback& playback) {
        call(all ? nullptr : name.c_str(), playback.Answer<wchar_t>(), size);
    });
    return call(device, targets, size);
}

DWORD WINAPI RecordGetLogicalDrives() {
    ORVANE_SIMULATED(GetLogicalDrives);
    tape->Add(0, [=](Playback&) { call(); });
    return call();
}

UINT WINAPI RecordGetDriveTypeW(LPCWSTR root) {
    ORVANE_SIMULATED(GetDriveTypeW);
    tape->Add(0, [=, root = Text(root)](Playback&) { call(root.c_str()); });
    return call(root);
}

BOOL WINAPI RecordGetDiskFreeSpaceW(LPCWSTR root, LPDWORD a, LPDWORD b, LPDWORD c, LPDWORD d) {
    ORVANE_SIMULATED(GetDiskFreeSpaceW);
    tape->Add(0, [=, root = Text(root)](Playback&) {
        DWORD numbers[4] = {};
        call(root.c_str(), &numbers[0], &numbers[1], &numbers[2], &numbers[3]);
    });
    return call(root, a, b, c, d);
}

BOOL WINAPI RecordGetDiskFreeSpaceExW(LPCWSTR root, PULARGE_INTEGER a, PULARGE_INTEGER b, PULARGE_INTEGER c) {
    ORVANE_SIMULATED(GetDiskFreeSpaceExW);
    tape->Add(0, [=, root = Text(root)](Playback&) {
        ULARGE_INTEGER numbers[3] = {};
        call(root.c_str(), &numbers[0], &numbers[1], &numbers[2]);
    });
    return call(root, a, b, c);
}

BOOL WINAPI RecordGetVolumeInformationW(LPCWSTR root, LPWSTR label, DWORD label_size, LPDWORD serial,
                                        LPDWORD component, LPDWORD flags, LPWSTR system, DWORD system_size) {
    ORVANE_SIMULATED(GetVolumeInformationW);
    const std::size_t bytes = (label_size + system_size) * sizeof(wchar_t);
    tape->Add(bytes, [=, root = Text(root)](Playback& playback) {
        auto* const texts = playback.Answer<wchar_t>();
        DWORD numbers[3] = {};
        call(root.c_str(), texts, label_size, &numbers[0], &numbers[1], &numbers[2], texts + label_size,
             system_size);
    });
    return call(root, label, label_size, serial, component, flags, system, system_size);
}

using OpenDirectory = NTSTATUS(NTAPI*)(PHANDLE, ACCESS_MASK, POBJECT_ATTRIBUTES);
using QueryDirectory = NTSTATUS(NTAPI*)(HANDLE, PVOID, ULONG, BOOLEAN, BOOLEAN, PULONG, PULONG);
using CloseObject = NTSTATUS(NTAPI*)(HANDLE);

NTSTATUS NTAPI RecordZwOpenDirectoryObject(PHANDLE directory, ACCESS_MASK access,
                                           POBJECT_ATTRIBUTES attributes) {
    static const auto call = Simulated<OpenDirectory>(L"ntdll.dll", "ZwOpenDirectoryObject");
    const NTSTATUS status = call(directory, access, attributes);
    const std::size_t place = tape->PlaceOf(*directory);
    std::wstring path(attributes->ObjectName->Buffer, attributes->ObjectName->Length / sizeof(wchar_t));
    tape->Add(0, [=](Playback& playback) {
        UNICODE_STRING name{};
        name.Buffer = const_cast<PWSTR>(path.c_str());
        name.Length = static_cast<USHORT>(path.size() * sizeof(wchar_t));
        name.MaximumLength = static_cast<USHORT>(name.Length + sizeof(wchar_t));
        OBJECT_ATTRIBUTES own{};
        own.Length = sizeof(own);
        own.ObjectName = &name;
        own.Attributes = OBJ_CASE_INSENSITIVE;
        call(&playback.handles[place], access, &own);
    });
    return status;
}

NTSTATUS NTAPI RecordZwQueryDirectoryObject(HANDLE directory, PVOID buffer, ULONG size, BOOLEAN single,
                                            BOOLEAN restart, PULONG context, PULONG returned) {
    static const auto call = Simulated<QueryDirectory>(L"ntdll.dll", "ZwQueryDirectoryObject");
    const std::size_t place = tape->Find(directory);
    tape->Add(size, [=, before = *context](Playback& playback) {
        ULONG position = before;
        ULONG length = 0;
        call(playback.handles[place], playback.Answer<void>(), size, single, restart, &position, &length);
    });
    return call(directory, buffer, size, single, restart, context, returned);
}

NTSTATUS NTAPI RecordZwClose(HANDLE handle) {
    static const auto call = Simulated<CloseObject>(L"ntdll.dll", "ZwClose");
    const std::size_t place = tape->Find(handle);
    tape->Add(0, [=](Playback& playback) { call(playback.handles[place]); });
    return call(handle);
}

// The functions that the library imports directly.

HRESULT WINAPI RecordCoInitializeEx(LPVOID reserved, DWORD model) {
    tape->Add(0, [=](Playback&) { CoInitializeEx(nullptr, model); });
    return CoInitializeEx(reserved, model);
}

void WINAPI RecordCoUninitialize() {
    tape->Add(0, [](Playback&) { CoUninitialize(); });
    CoUninitialize();
}

HRESULT WINAPI RecordCoCreateGuid(GUID* guid) {
    tape->Add(0, [](Playback&) {
        GUID own{};
        CoCreateGuid(&own);
    });
    return CoCreateGuid(guid);
}

__time64_t __cdecl RecordTime(__time64_t* time) {
    tape->Add(0, [](Playback&) { _time64(nullptr); });
    return _time64(time);
}

template <class Function>
FARPROC AsProc(Function function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

struct Recorded {
    const char* name;
    FARPROC function;
};

const Recorded kRecorded[] = {
    {"CreateFileW", AsProc(&RecordCreateFileW)},
    {"CloseHandle", AsProc(&RecordCloseHandle)},
    {"DeviceIoControl", AsProc(&RecordDeviceIoControl)},
    {"FindFirstVolumeW", AsProc(&RecordFindFirstVolumeW)},
    {"FindNextVolumeW", AsProc(&RecordFindNextVolumeW)},
    {"FindVolumeClose", AsProc(&RecordFindVolumeClose)},
    {"GetVolumePathNamesForVolumeNameW", AsProc(&RecordGetVolumePathNamesForVolumeNameW)},
    {"GetVolumeNameForVolumeMountPointW", AsProc(&RecordGetVolumeNameForVolumeMountPointW)},
    {"QueryDosDeviceW", AsProc(&RecordQueryDosDeviceW)},
    {"GetLogicalDrives", AsProc(&RecordGetLogicalDrives)},
    {"GetDriveTypeW", AsProc(&RecordGetDriveTypeW)},
    {"GetDiskFreeSpaceW", AsProc(&RecordGetDiskFreeSpaceW)},
    {"GetDiskFreeSpaceExW", AsProc(&RecordGetDiskFreeSpaceExW)},
    {"GetVolumeInformationW", AsProc(&RecordGetVolumeInformationW)},
    {"ZwOpenDirectoryObject", AsProc(&RecordZwOpenDirectoryObject)},
    {"ZwQueryDirectoryObject", AsProc(&RecordZwQueryDirectoryObject)},
    {"ZwClose", AsProc(&RecordZwClose)},
};

const Recorded kRecordedImports[] = {
    {"CoInitializeEx", AsProc(&RecordCoInitializeEx)},
    {"CoUninitialize", AsProc(&RecordCoUninitialize)},
    {"CoCreateGuid", AsProc(&RecordCoCreateGuid)},
    {"_time64", AsProc(&RecordTime)},
};

FARPROC WINAPI RecordingProcAddress(HMODULE module, LPCSTR name) {
    const FARPROC function = machine::SimulatedProcAddress(module, name);
    if (reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF) {
        return function;
    }
    const auto* const recorded =
        std::find_if(std::begin(kRecorded), std::end(kRecorded),
                     [&](const Recorded& each) { return std::strcmp(each.name, name) == 0; });
    return recorded == std::end(kRecorded) ? function : recorded->function;
}

}  // namespace

void CallTape::Clear() {
    calls_.clear();
    places_.clear();
}

void CallTape::Add(std::size_t answer_bytes, Call call) {
    calls_.push_back(std::move(call));
    std::vector<std::uint64_t>& scratch = playback_.scratch;
    scratch.resize(std::max(scratch.size(), answer_bytes / sizeof(scratch[0]) + 1));
}

std::size_t CallTape::PlaceOf(HANDLE opened) {
    places_.push_back(opened);
    return places_.size() - 1;
}

std::size_t CallTape::Find(HANDLE handle) const {
    // Searches backwards: a handle value may be reused after it was closed.
    const auto found = std::find(places_.rbegin(), places_.rend(), handle);
    if (found == places_.rend()) {
        throw std::logic_error("a call uses a handle that none opened");
    }
    return static_cast<std::size_t>(places_.rend() - found) - 1;
}

void CallTape::Play() {
    playback_.handles.resize(places_.size());
    for (const Call& call : calls_) {
        call(playback_);
    }
}

void RecordCallsOf(HMODULE module, CallTape& recorded_on) {
    tape = &recorded_on;
    const auto redirect = [&](const char* name, FARPROC function) {
        if (machine::RedirectImport(module, name, function) == nullptr) {
            throw std::runtime_error("the library's calls cannot be recorded");
        }
    };
    redirect("GetProcAddress", AsProc(&RecordingProcAddress));
    for (const Recorded& import : kRecordedImports) {
        redirect(import.name, import.function);
    }
}

}  // namespace bench
