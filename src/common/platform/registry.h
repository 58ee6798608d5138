#pragma once

#include "common/windows.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A cursor over the values of a key, which stays the caller's.
struct RegistryValueCursor {
    static constexpr std::size_t kNameCharacters = 16383;  // the longest name of a value
    static constexpr std::size_t kDataCharacters = 16383;

    // `data_bytes` is the length of the longest data that can be read. Throws std::bad_alloc when there is no
    // memory for the buffers.
    explicit RegistryValueCursor(HKEY open_key, std::size_t data_bytes = kDataCharacters * sizeof(wchar_t));

    // Valid until the cursor moves.
    std::wstring_view Name() const { return {name.data(), name_length}; }

    HKEY key;
    DWORD index = 0;
    std::vector<wchar_t> name;
    std::vector<unsigned char> data;
    DWORD name_length = 0;  // characters, without the terminator
    DWORD data_length = 0;  // bytes
    DWORD type = REG_NONE;
};

// A value to be written.
struct RegistryValue {
    std::wstring name;
    DWORD type = REG_NONE;
    std::vector<unsigned char> data;
};

// The registry. Keys are plain handles that belong to the caller. Failures, memory running out among them,
// are false and lines in the log; nothing throws but GetCurrentControlSetName. Hives need the backup and
// restore privileges, which the caller enables.
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
    // Writes all the values; true when every one could be written.
    virtual bool ModifyRegValues(HKEY key, const std::vector<RegistryValue>& values);
    virtual bool VerifyKeyExistance(HKEY parent, const std::wstring& path);
    // The name ("ControlSet001") of the control set that the system under `windows_directory` marks current,
    // out of its SYSTEM hive. Throws a std::wstring that says what failed, and nothing else: where there is
    // not even the memory to compose it, it is "Memory".
    virtual std::wstring GetCurrentControlSetName(const std::wstring& windows_directory);
    virtual bool GetValue(HKEY key, const std::wstring& name, std::wstring& value);
    virtual bool GetValue(HKEY key, const std::wstring& name, std::uint32_t& value);
    virtual bool GetValue(HKEY key, const std::wstring& name, std::vector<unsigned char>& value);

    // Puts the cursor on the first, or the next, value and reads it; returns the system's code,
    // ERROR_NO_MORE_ITEMS after the last one.
    static LSTATUS FindFirstValue(RegistryValueCursor& cursor);
    static LSTATUS FindNextValue(RegistryValueCursor& cursor);
};
