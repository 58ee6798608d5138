// Finds the current control set in a system's hive.

#include "common/platform/registry.h"
#include "common/text/listing_bound.h"
#include "common/text/scope_exit.h"

#include <array>
#include <cstring>
#include <cwchar>
#include <new>

namespace {

[[noreturn]] void Fail(const std::wstring& message) {
    throw L"Error in " + std::wstring(L"CRegistry::GetCurrentControlSetName") + L" - " + message;
}

[[noreturn]] void FailWithoutMemory() {
    try {
        Fail(L"Not enough memory");
    } catch (const std::bad_alloc&) {
        throw std::wstring(L"Memory");  // short enough to be stored in the object itself
    }
}

std::wstring ControlSetName(std::uint32_t number) {
    constexpr std::uint32_t kTooBig = 1000;
    constexpr int kDigits = 3;
    if (number >= kTooBig) {
        Fail(L"Current ControlSet number too big");
    }
    std::array<wchar_t, 16> digits{};
    _snwprintf(digits.data(), digits.size() - 1, L"%.*u", kDigits, number);
    return std::wstring(L"ControlSet") + digits.data();
}

// Reads the number of the current control set from the values of the key. Returns false if there is none.
bool FindCurrentNumber(HKEY select_key, std::uint32_t& number) {
    RegistryValueCursor cursor(select_key);
    LSTATUS status = CRegistry::FindFirstValue(cursor);
    for (std::size_t i = 0; i < kMostListed && status == ERROR_SUCCESS; ++i) {
        if (cursor.Name() == L"Current" && cursor.type == REG_DWORD && cursor.data_length >= sizeof(number)) {
            std::memcpy(&number, cursor.data.data(), sizeof(number));
            return true;
        }
        status = CRegistry::FindNextValue(cursor);
    }
    return false;
}

std::wstring HiveFile(const std::wstring& windows_directory) {
    return windows_directory + (windows_directory.ends_with(L'\\') ? L"" : L"\\") +
           L"system32\\config\\SYSTEM";
}

// Like GetCurrentControlSetName, but throws std::bad_alloc if out of memory.
std::wstring CurrentControlSetIn(CRegistry& registry, const std::wstring& file) {
    // Created before the hive is loaded, because unloading must not allocate.
    const std::wstring hive_key = L"ControlSetSearchHive";
    if (!registry.LoadHive(HKEY_LOCAL_MACHINE, hive_key, file)) {
        Fail(L"Failed to load the system hive " + file);
    }
    const ScopeExit unload([&] { registry.UnloadHive(HKEY_LOCAL_MACHINE, hive_key); });
    const std::wstring path = hive_key + L"\\Select";
    HKEY select_key = nullptr;
    if (!registry.OpenKey(HKEY_LOCAL_MACHINE, path, KEY_READ, select_key)) {
        Fail(L"Failed to open the Key " + path);
    }
    const ScopeExit close([&] { registry.CloseKey(select_key); });
    std::uint32_t number = 0;
    if (!FindCurrentNumber(select_key, number)) {
        Fail(L"Failed to find current ControlSet");
    }
    return ControlSetName(number);
}

}  // namespace

std::wstring CRegistry::GetCurrentControlSetName(const std::wstring& windows_directory) {
    try {
        return CurrentControlSetIn(*this, HiveFile(windows_directory));
    } catch (const std::bad_alloc&) {
        FailWithoutMemory();
    }
}
