#include "common/platform/registry.h"

#include "common/logger/orvane_logger.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

constexpr wchar_t kGetValue[] = L"CRegistry::GetValue";

void Trace(const wchar_t* text) {
    GetLogger().Write(kLogTrace, text);
}

bool TraceResult(bool result, const wchar_t* exit_line) {
    Trace(result ? L"bRet is TRUE" : L"bRet is FALSE");
    Trace(exit_line);
    return result;
}

// Returns false if out of memory. Also returns false, without allocating, if `size` is larger than any
// registry value can be.
template <class Container>
bool MakeRoom(Container& container, std::size_t size) {
    constexpr std::size_t kLargestValue = std::size_t{1} << 30;
    if (size > kLargestValue / sizeof(typename Container::value_type)) {
        return false;
    }
    try {
        container.resize(size);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

bool ValueFailed(int level, const wchar_t* format, const std::wstring& name, LSTATUS status) {
    GetLogger().Write(level, format, kGetValue, name.c_str(), status);
    return false;
}

}  // namespace

RegistryValueCursor::RegistryValueCursor(HKEY open_key, std::size_t data_bytes)
    : key(open_key), name(kNameCharacters), data(data_bytes) {}

bool CRegistry::CreateKey(HKEY parent, const std::wstring& name, HKEY& key) {
    Trace(L"Function CreateKey");
    Trace(L"Creating the Key");
    const LSTATUS status = RegCreateKeyW(parent, name.c_str(), &key);
    GetLogger().Write(kLogTrace, L"CRegistry::CreateKey keyName=%ws res=%d", name.c_str(), status);
    return TraceResult(status == ERROR_SUCCESS, L"Exiting CreateKey");
}

bool CRegistry::OpenKey(HKEY parent, const std::wstring& name, REGSAM access, HKEY& key) {
    Trace(L"Function OpenKey");
    Trace(L"Opening the Key");
    const LSTATUS status = RegOpenKeyExW(parent, name.c_str(), 0, access, &key);
    GetLogger().Write(kLogTrace, L"CRegistry::OpenKey keyName=%ws access=0x%x res=%d", name.c_str(), access,
                      status);
    return TraceResult(status == ERROR_SUCCESS, L"Exiting OpenKey");
}

bool CRegistry::CloseKey(HKEY key) {
    Trace(L"Function CloseKey");
    const LSTATUS status = RegCloseKey(key);
    GetLogger().Write(kLogTrace, L"CRegistry::CloseKey res=%d", status);
    return TraceResult(status == ERROR_SUCCESS, L"Exiting CloseKey");
}

bool CRegistry::LoadHive(HKEY parent, const std::wstring& subkey, const std::wstring& file) {
    const LSTATUS status = RegLoadKeyW(parent, subkey.c_str(), file.c_str());
    // "res" without "=", here and below: compatibility C27
    GetLogger().Write(kLogTrace, L"CRegistry::LoadHive subKey=%ws file=%ws res%d", subkey.c_str(),
                      file.c_str(), status);
    return status == ERROR_SUCCESS;
}

bool CRegistry::UnloadHive(HKEY parent, const std::wstring& subkey) {
    const LSTATUS status = RegUnLoadKeyW(parent, subkey.c_str());
    GetLogger().Write(kLogTrace, L"CRegistry::UnloadHive subKey=%ws res%d", subkey.c_str(), status);
    return status == ERROR_SUCCESS;
}

bool CRegistry::ModifyRegValues(HKEY key, const std::vector<RegistryValue>& values) {
    Trace(L"Function ModifyRegValues");
    bool result = true;
    for (const RegistryValue& value : values) {
        Trace(L"Modifying Value");
        if (RegSetValueExW(key, value.name.c_str(), 0, value.type, value.data.data(),
                           static_cast<DWORD>(value.data.size())) != ERROR_SUCCESS) {
            Trace(L"Failed in Modifying Value");
            result = false;
        }
    }
    return TraceResult(result, L"Exiting ModifyRegValues");
}

// Misspelled on purpose. Returns true even if closing the key fails: compatibility C26, C130
bool CRegistry::VerifyKeyExistance(HKEY parent, const std::wstring& path) {
    constexpr const wchar_t* kFunction = L"CRegistry::VerifyKeyExistance";
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key);
    if (status != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"%s Failed to RegOpenKeyEx of %s error=%u", kFunction, path.c_str(),
                          status);
        return false;
    }
    status = RegCloseKey(key);
    if (status != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"%s Failed to RegCloseKey of %s error=%u", kFunction, path.c_str(),
                          status);
    }
    return true;
}

// Logs a warning for texts and numbers, an error for bytes: compatibility C28
bool CRegistry::GetValue(HKEY key, const std::wstring& name, std::wstring& value) {
    constexpr const wchar_t* kFailure = L"%s failed to get value of %s error=%u";
    DWORD bytes = 0;
    LSTATUS status = RegGetValueW(key, nullptr, name.c_str(), RRF_RT_REG_SZ, nullptr, nullptr, &bytes);
    if (status != ERROR_SUCCESS) {
        return ValueFailed(kLogWarning, kFailure, name, status);
    }
    std::wstring text;
    if (!MakeRoom(text, bytes / sizeof(wchar_t) + 1)) {
        return ValueFailed(kLogWarning, kFailure, name, ERROR_OUTOFMEMORY);
    }
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    status = RegGetValueW(key, nullptr, name.c_str(), RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
    if (status != ERROR_SUCCESS) {
        return ValueFailed(kLogWarning, kFailure, name, status);
    }
    text.resize(std::min(text.find(L'\0'), text.size()));
    value = std::move(text);
    return true;
}

bool CRegistry::GetValue(HKEY key, const std::wstring& name, std::uint32_t& value) {
    DWORD number = 0;
    DWORD bytes = sizeof(number);
    const LSTATUS status =
        RegGetValueW(key, nullptr, name.c_str(), RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    if (status != ERROR_SUCCESS) {
        return ValueFailed(kLogWarning, L"%s failed to get value of %s error=%u", name, status);
    }
    value = number;
    return true;
}

bool CRegistry::GetValue(HKEY key, const std::wstring& name, std::vector<unsigned char>& value) {
    DWORD bytes = 0;
    LSTATUS status = RegQueryValueExW(key, name.c_str(), nullptr, nullptr, nullptr, &bytes);
    if (status != ERROR_SUCCESS) {
        return ValueFailed(kLogError, L"%s failed to get size of value of %s error=%u", name, status);
    }
    std::vector<unsigned char> data;
    if (!MakeRoom(data, bytes)) {
        return ValueFailed(kLogError, L"%s failed to get value of %s error=%u", name, ERROR_OUTOFMEMORY);
    }
    status = RegQueryValueExW(key, name.c_str(), nullptr, nullptr, data.data(), &bytes);
    if (status != ERROR_SUCCESS) {
        return ValueFailed(kLogError, L"%s failed to get value of %s error=%u", name, status);
    }
    data.resize(std::min<std::size_t>(bytes, data.size()));
    value = std::move(data);
    return true;
}

LSTATUS CRegistry::FindFirstValue(RegistryValueCursor& cursor) {
    cursor.index = 0;
    return FindNextValue(cursor);
}

LSTATUS CRegistry::FindNextValue(RegistryValueCursor& cursor) {
    cursor.name_length = static_cast<DWORD>(cursor.name.size());
    cursor.data_length = static_cast<DWORD>(cursor.data.size());
    const LSTATUS status = RegEnumValueW(cursor.key, cursor.index, cursor.name.data(), &cursor.name_length,
                                         nullptr, &cursor.type, cursor.data.data(), &cursor.data_length);
    if (status == ERROR_SUCCESS) {
        ++cursor.index;
        cursor.name_length = std::min(cursor.name_length, static_cast<DWORD>(cursor.name.size()));
        cursor.data_length = std::min(cursor.data_length, static_cast<DWORD>(cursor.data.size()));
    }
    return status;
}
