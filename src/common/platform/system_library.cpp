#include "common/platform/system_library.h"

#include "common/logger/orvane_logger.h"

#include <iterator>

namespace {

enum class Missing {
    kStopsBinding,
    kLoggedOnly,
    kSilentlyAllowed,
};

template <class Table>
struct Binding {
    const char* name;
    void (*store)(Table& table, FARPROC function);
    Missing missing;
    const wchar_t* message;  // null if a missing function is not logged
};

template <class>
struct MemberOf;

template <class Table, class Function>
struct MemberOf<Function Table::*> {
    using TableType = Table;
    using FunctionType = Function;
};

template <auto kMember>
void Store(typename MemberOf<decltype(kMember)>::TableType& table, FARPROC function) {
    // Casts through void*, because the compiler warns about a direct cast between function types.
    table.*kMember = reinterpret_cast<typename MemberOf<decltype(kMember)>::FunctionType>(
        reinterpret_cast<void*>(function));
}

// In binding order. A missing function stops the binding; the functions after it stay unbound. Only the
// firmware functions may be missing, so that the library works on systems without firmware support. The
// order, and what stays set after a failure: compatibility C129
constexpr Binding<Kernel32DLL> kKernel32Bindings[] = {
    {"CreateWaitableTimerA", Store<&Kernel32DLL::CreateWaitableTimerA>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of CreateWaitableTimerA failed error=0x%x"},
    {"SetWaitableTimer", Store<&Kernel32DLL::SetWaitableTimer>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of SetWaitableTimer failed error=0x%x"},
    {"CreateDirectoryW", Store<&Kernel32DLL::CreateDirectoryW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of CreateDirectoryW failed error=0x%x"},
    {"SetFileAttributesW", Store<&Kernel32DLL::SetFileAttributesW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of SetFileAttributesW failed error=0x%x"},
    {"GetComputerNameExW", Store<&Kernel32DLL::GetComputerNameExW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetComputerNameExW failed error=0x%x"},
    {"GetVolumePathNameW", Store<&Kernel32DLL::GetVolumePathNameW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetVolumePathNameW failed error=0x%x"},
    {"GetVolumeNameForVolumeMountPointW", Store<&Kernel32DLL::GetVolumeNameForVolumeMountPointW>,
     Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetVolumeNameForVolumeMountPointW failed error=0x%x"},
    {"CreateHardLinkW", Store<&Kernel32DLL::CreateHardLinkW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of CreateHardLinkW failed error=0x%x"},
    {"QueryDosDeviceW", Store<&Kernel32DLL::QueryDosDeviceW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of QueryDosDeviceW failed error=0x%x"},
    {"GetLogicalDrives", Store<&Kernel32DLL::GetLogicalDrives>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetLogicalDrives failed error=0x%x"},
    {"GetDriveTypeW", Store<&Kernel32DLL::GetDriveTypeW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetDriveTypeW failed error=0x%x"},
    {"GetDiskFreeSpaceW", Store<&Kernel32DLL::GetDiskFreeSpaceW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetDiskFreeSpaceW failed error=0x%x"},
    {"GetDiskFreeSpaceExW", Store<&Kernel32DLL::GetDiskFreeSpaceExW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetDiskFreeSpaceExW failed error=0x%x"},
    {"FindFirstVolumeW", Store<&Kernel32DLL::FindFirstVolumeW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of FindFirstVolumeW failed error=0x%x"},
    {"FindNextVolumeW", Store<&Kernel32DLL::FindNextVolumeW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of FindNextVolumeW failed error=0x%x"},
    {"FindVolumeClose", Store<&Kernel32DLL::FindVolumeClose>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of FindVolumeClose failed error=0x%x"},
    {"DeviceIoControl", Store<&Kernel32DLL::DeviceIoControl>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of DeviceIoControl failed error=0x%x"},
    {"GetVolumeInformationW", Store<&Kernel32DLL::GetVolumeInformationW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetVolumeInformationW failed error=0x%x"},
    {"GetVolumePathNamesForVolumeNameW", Store<&Kernel32DLL::GetVolumePathNamesForVolumeNameW>,
     Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetVolumePathNamesForVolumeNameW failed error=0x%x"},
    {"CreateFileW", Store<&Kernel32DLL::CreateFileW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of CreateFileW failed error=0x%x"},
    {"CreateProcessW", Store<&Kernel32DLL::CreateProcessW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of CreateProcessW failed error=0x%x"},
    {"CloseHandle", Store<&Kernel32DLL::CloseHandle>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of CloseHandle failed error=0x%x"},
    {"FlushFileBuffers", Store<&Kernel32DLL::FlushFileBuffers>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of FlushFileBuffers failed error=0x%x"},
    {"GetFirmwareType", Store<&Kernel32DLL::GetFirmwareType>, Missing::kSilentlyAllowed, nullptr},
    // The log line omits the "W": compatibility C14
    {"GetFirmwareEnvironmentVariableW", Store<&Kernel32DLL::GetFirmwareEnvironmentVariableW>,
     Missing::kLoggedOnly, L"Kernel32DLL GetProcAddress of GetFirmwareEnvironmentVariable failed error=0x%x"},
    {"DefineDosDeviceW", Store<&Kernel32DLL::DefineDosDeviceW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of DefineDosDeviceW failed error=0x%x"},
    {"GetExitCodeProcess", Store<&Kernel32DLL::GetExitCodeProcess>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetExitCodeProcess failed error=0x%x"},
    {"WaitForSingleObject", Store<&Kernel32DLL::WaitForSingleObject>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of WaitForSingleObject failed error=0x%x"},
    {"IsWow64Process", Store<&Kernel32DLL::IsWow64Process>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of IsWow64Process failed error=0x%x"},
    {"GetCurrentProcess", Store<&Kernel32DLL::GetCurrentProcess>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetCurrentProcess failed error=0x%x"},
    {"GetSystemDirectoryW", Store<&Kernel32DLL::GetSystemDirectoryW>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of GetSystemDirectoryW failed error=0x%x"},
    {"WriteFile", Store<&Kernel32DLL::WriteFile>, Missing::kStopsBinding,
     L"Kernel32DLL GetProcAddress of WriteFile failed error=0x%x"},
};

constexpr Binding<NtDLL> kNtBindings[] = {
    {"ZwClose", Store<&NtDLL::ZwClose>, Missing::kStopsBinding,
     L"NtDLL GetProcAddress of ZwClose failed error=0x%x"},
    {"ZwQueryDirectoryObject", Store<&NtDLL::ZwQueryDirectoryObject>, Missing::kStopsBinding,
     L"NtDLL GetProcAddress of ZwQueryDirectoryObject failed error=0x%x"},
    {"ZwOpenDirectoryObject", Store<&NtDLL::ZwOpenDirectoryObject>, Missing::kStopsBinding,
     L"NtDLL GetProcAddress of ZwOpenDirectoryObject failed error=0x%x"},
};

template <class Table>
void ReleaseModule(Table& table) {
    if (table.module != nullptr) {
        FreeLibrary(table.module);
        table.module = nullptr;
    }
}

// Returns false if a required function is missing.
template <class Table>
bool BindFunction(Table& table, const Binding<Table>& binding) {
    const FARPROC function = GetProcAddress(table.module, binding.name);
    binding.store(table, function);
    if (function != nullptr || binding.missing == Missing::kSilentlyAllowed) {
        return true;
    }
    GetLogger().Write(kLogError, binding.message, GetLastError());
    return binding.missing == Missing::kLoggedOnly;
}

template <class Table, std::size_t kCount>
void BindTable(Table& table, const wchar_t* library, const wchar_t* load_message,
               const Binding<Table> (&bindings)[kCount]) {
    table.module = LoadLibraryW(library);
    if (table.module == nullptr) {
        GetLogger().Write(kLogError, load_message, GetLastError());
        return;
    }
    for (const Binding<Table>& binding : bindings) {
        if (!BindFunction(table, binding)) {
            ReleaseModule(table);
            return;
        }
    }
}

// Binds in the constructor, so that the thread-safe initialisation of a static object covers the binding too.
template <class Table>
struct BoundTable : Table {
    BoundTable() { this->Bind(); }
};

}  // namespace

Kernel32DLL& Kernel32DLL::Get() {
    static BoundTable<Kernel32DLL> table;
    return table;
}

Kernel32DLL::~Kernel32DLL() {
    ReleaseModule(*this);
}

void Kernel32DLL::Bind() {
    BindTable(*this, L"kernel32.dll", L"Kernel32DLL LoadLibrary failed error=0x%x", kKernel32Bindings);
}

NtDLL& NtDLL::Get() {
    static BoundTable<NtDLL> table;
    return table;
}

NtDLL::~NtDLL() {
    ReleaseModule(*this);
}

void NtDLL::Bind() {
    BindTable(*this, L"ntdll.dll", L"NtDLL LoadLibrary failed error=0x%x", kNtBindings);
}
