// The search for the current control set in a system's hive.

#include "common/platform/registry.h"
#include "common/platform/scope_exit.h"

#include <array>
#include <cstring>
#include <cwchar>

namespace {

constexpr wchar_t kHiveKey[] = L"ControlSetSearchHive";

[[noreturn]] void Fail(const std::wstring& message) {
    throw L"Error in " + std::wstring(L"CRegistry::GetCurrentControlSetName") + L" - " + message;
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

std::wstring FindCurrentControlSet(HKEY select_key) {
    RegistryValueCursor cursor(select_key);
    for (LSTATUS status = CRegistry::FindFirstValue(cursor); status == ERROR_SUCCESS;
         status = CRegistry::FindNextValue(cursor)) {
        std::uint32_t number = 0;
        if (cursor.Name() == L"Current" && cursor.type == REG_DWORD && cursor.data_length >= sizeof(number)) {
            std::memcpy(&number, cursor.data.data(), sizeof(number));
            return ControlSetName(number);
        }
    }
    return {};
}

}  // namespace

std::wstring CRegistry::GetCurrentControlSetName(const std::wstring& windows_directory) {
    std::wstring file = windows_directory;
    if (!file.ends_with(L'\\')) {
        file += L'\\';
    }
    file += L"system32\\config\\SYSTEM";
    if (!LoadHive(HKEY_LOCAL_MACHINE, kHiveKey, file)) {
        Fail(L"Failed to load the system hive " + file);
    }
    const ScopeExit unload([this] { UnloadHive(HKEY_LOCAL_MACHINE, kHiveKey); });
    const std::wstring path = std::wstring(kHiveKey) + L"\\Select";
    HKEY select_key = nullptr;
    if (!OpenKey(HKEY_LOCAL_MACHINE, path, KEY_READ, select_key)) {
        Fail(L"Failed to open the Key " + path);
    }
    const ScopeExit close([this, select_key] { CloseKey(select_key); });
    std::wstring name = FindCurrentControlSet(select_key);
    if (name.empty()) {
        Fail(L"Failed to find current ControlSet");
    }
    return name;
}
