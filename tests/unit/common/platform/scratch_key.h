#pragma once

#include "common/platform/registry.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

// A temporary key below HKEY_CURRENT_USER, deleted with the object. It is not volatile, because a volatile
// key cannot have non-volatile subkeys and is not saved.
class ScratchKey {
public:
    ScratchKey() : ScratchKey(L"Software\\OrvaneTest-" + std::to_wstring(GetCurrentProcessId())) {}
    explicit ScratchKey(std::wstring path) : path_(std::move(path)) {
        RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());  // left by a crashed run
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key_, nullptr),
                  ERROR_SUCCESS);
    }
    ~ScratchKey() {
        RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    }
    ScratchKey(const ScratchKey&) = delete;
    ScratchKey& operator=(const ScratchKey&) = delete;

    HKEY get() const { return key_; }
    const std::wstring& path() const { return path_; }

    void Set(const wchar_t* name, DWORD type, const void* data, std::size_t bytes) const {
        EXPECT_EQ(
            RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(bytes)),
            ERROR_SUCCESS);
    }
    void SetText(const wchar_t* name, const std::wstring& text, DWORD type = REG_SZ) const {
        Set(name, type, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    void SetNumber(const wchar_t* name, DWORD number) const { Set(name, REG_DWORD, &number, sizeof(number)); }

private:
    std::wstring path_;
    HKEY key_ = nullptr;
};
