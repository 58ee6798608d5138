#include "common/platform/privileges.h"

#include "common/platform/unique_handle.h"
#include "common/windows.h"

namespace {

struct TokenHandleKind {
    static HANDLE Invalid() { return nullptr; }
    static void Close(HANDLE handle) {
        ::CloseHandle(handle);
    }  // tokens are not closed through the bound table
};

void EnablePrivilege(HANDLE token, const wchar_t* name) {
    TOKEN_PRIVILEGES privileges{};
    if (LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid) == FALSE) {
        return;
    }
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
}

}  // namespace

void EnableBackupPrivileges() {
    HANDLE handle = nullptr;
    if (OpenProcessToken(::GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &handle) == FALSE) {
        return;
    }
    const UniqueHandle<TokenHandleKind> token(handle);
    EnablePrivilege(token.get(), SE_BACKUP_NAME);
    EnablePrivilege(token.get(), SE_RESTORE_NAME);
}
