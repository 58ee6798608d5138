#pragma once

#include "common/platform/unique_handle.h"
#include "common/windows.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

struct TokenKind {
    static HANDLE Invalid() { return nullptr; }
    static void Close(HANDLE handle) { ::CloseHandle(handle); }
};
using Token = UniqueHandle<TokenKind>;

inline Token OwnToken(DWORD access = TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY) {
    HANDLE handle = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), access, &handle));
    return Token(handle);
}

inline LUID ValueOf(const wchar_t* privilege) {
    LUID luid{};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, privilege, &luid));
    return luid;
}

// The attributes of a privilege; none if the token does not hold it.
inline std::optional<DWORD> AttributesOf(HANDLE token, const wchar_t* privilege) {
    alignas(TOKEN_PRIVILEGES) unsigned char buffer[4096];
    DWORD bytes = 0;
    EXPECT_TRUE(GetTokenInformation(token, TokenPrivileges, buffer, sizeof(buffer), &bytes));
    const auto* held = reinterpret_cast<const TOKEN_PRIVILEGES*>(buffer);
    const LUID wanted = ValueOf(privilege);
    for (DWORD i = 0; i < held->PrivilegeCount; ++i) {
        const LUID& luid = held->Privileges[i].Luid;
        if (luid.LowPart == wanted.LowPart && luid.HighPart == wanted.HighPart) {
            return held->Privileges[i].Attributes;
        }
    }
    return std::nullopt;
}

inline bool IsHeld(HANDLE token, const wchar_t* privilege) {
    return AttributesOf(token, privilege).has_value();
}

inline bool IsEnabled(HANDLE token, const wchar_t* privilege) {
    return (AttributesOf(token, privilege).value_or(0) & SE_PRIVILEGE_ENABLED) != 0;
}

// Sets a privilege's attributes: 0 disables it, SE_PRIVILEGE_REMOVED removes it permanently.
inline void Adjust(HANDLE token, const wchar_t* privilege, DWORD attributes) {
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0] = {ValueOf(privilege), attributes};
    EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
}

// True if this user may load and save hives: administrators on Windows, every user under Wine.
inline bool UserHoldsBackupPrivileges() {
    const Token token = OwnToken();
    return IsHeld(token.get(), SE_BACKUP_NAME) && IsHeld(token.get(), SE_RESTORE_NAME);
}
