#pragma once

#include "common/windows.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A cursor over the values of a key. The caller owns the key.
struct RegistryValueCursor {
    static constexpr std::size_t kNameCharacters = 16383;  // the maximum length of a value name
    static constexpr std::size_t kDataCharacters = 16383;

    // `data_bytes` is the maximum size of the data that can be read. Throws std::bad_alloc if out of memory.
    explicit RegistryValueCursor(HKEY open_key, std::size_t data_bytes = kDataCharacters * sizeof(wchar_t));

    // Valid until the cursor moves.
    std::wstring_view Name() const { return {name.data(), name_length}; }

    HKEY key;
    DWORD index = 0;
    std::vector<wchar_t> name;
    std::vector<unsigned char> data;
    DWORD name_length = 0;  // in characters, without the terminator
    DWORD data_length = 0;  // in bytes
    DWORD type = REG_NONE;
};

// A value to write.
struct RegistryValue {
    std::wstring name;
    DWORD type = REG_NONE;
    std::vector<unsigned char> data;
};

// Registry access. Keys are plain handles that belong to the caller. Failures, including out of memory,
// return false and are logged. Only GetCurrentControlSetName throws. Loading a hive requires the backup and
// restore privileges, which the caller must enable.
class CRegistry {
public:
    CRegistry() = default;
    virtual ~CRegistry() = default;
    CRegistry(const CRegistry&) = delete;
    CRegistry& operator=(const CRegistry&) = delete;

    virtual bool CreateKey(HKEY parent, const std::wstring& name, HKEY& key);
    virtual bool OpenKey(HKEY parent, const std::wstring& name, REGSAM access, HKEY& key);
    virtual bool CloseKey(HKEY key);
    virtual bool LoadHive(HKEY parent, const std::wstring& subkey, const std::wstring& file);
    virtual bool UnloadHive(HKEY parent, const std::wstring& subkey);
    // Writes all the values. Returns true if every one was written.
    virtual bool ModifyRegValues(HKEY key, const std::vector<RegistryValue>& values);
    virtual bool VerifyKeyExistance(HKEY parent, const std::wstring& path);
    // The name ("ControlSet001") of the current control set of the system in `windows_directory`, read from
    // its SYSTEM hive. On failure throws a std::wstring with the error message, and nothing else. If there is
    // not enough memory for the message, the text is "Memory".
    virtual std::wstring GetCurrentControlSetName(const std::wstring& windows_directory);
    virtual bool GetValue(HKEY key, const std::wstring& name, std::wstring& value);
    virtual bool GetValue(HKEY key, const std::wstring& name, std::uint32_t& value);
    virtual bool GetValue(HKEY key, const std::wstring& name, std::vector<unsigned char>& value);

    // Move the cursor to the first or the next value and read it. Return the system's error code,
    // ERROR_NO_MORE_ITEMS after the last value.
    static LSTATUS FindFirstValue(RegistryValueCursor& cursor);
    static LSTATUS FindNextValue(RegistryValueCursor& cursor);
};
