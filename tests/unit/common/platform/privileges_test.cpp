#include <cwchar>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "common/platform/privileges.h"
#include "common/platform/unique_handle.h"
#include "support/stub.h"

namespace {

using testing::ElementsAre;

struct TokenKind {
    static HANDLE Invalid() { return nullptr; }
    static void Close(HANDLE handle) { ::CloseHandle(handle); }
};
using Token = UniqueHandle<TokenKind>;

Token OwnToken() {
    HANDLE handle = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &handle));
    return Token(handle);
}

LUID ValueOf(const wchar_t* privilege) {
    LUID luid{};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, privilege, &luid));
    return luid;
}

// Whether the process's token has the privilege enabled; false also where it has it not at all.
bool IsEnabled(const wchar_t* privilege) {
    PRIVILEGE_SET set{};
    set.PrivilegeCount = 1;
    set.Control = PRIVILEGE_SET_ALL_NECESSARY;
    set.Privilege[0].Luid = ValueOf(privilege);
    BOOL enabled = FALSE;
    EXPECT_TRUE(PrivilegeCheck(OwnToken().get(), &set, &enabled));
    return enabled != FALSE;
}

// Whether the process's token holds the privilege, enabled or not.
bool IsHeld(const wchar_t* privilege) {
    std::vector<unsigned char> buffer(4096);
    DWORD bytes = 0;
    EXPECT_TRUE(GetTokenInformation(OwnToken().get(), TokenPrivileges, buffer.data(),
                                    static_cast<DWORD>(buffer.size()), &bytes));
    const auto* held = reinterpret_cast<const TOKEN_PRIVILEGES*>(buffer.data());
    const LUID wanted = ValueOf(privilege);
    for (DWORD i = 0; i < held->PrivilegeCount; ++i) {
        const LUID& luid = held->Privileges[i].Luid;
        if (luid.LowPart == wanted.LowPart && luid.HighPart == wanted.HighPart) {
            return true;
        }
    }
    return false;
}

void Disable(const wchar_t* privilege) {
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Luid = ValueOf(privilege);
    EXPECT_TRUE(AdjustTokenPrivileges(OwnToken().get(), FALSE, &privileges, 0, nullptr, nullptr));
}

TEST(EnableBackupPrivileges, PrivilegesThatAreHeld_AreEnabledAfterwards) {
    for (const wchar_t* const privilege : {L"SeBackupPrivilege", L"SeRestorePrivilege"}) {
        Disable(privilege);
        ASSERT_FALSE(IsEnabled(privilege));
    }
    EnableBackupPrivileges();
    for (const wchar_t* const privilege : {L"SeBackupPrivilege", L"SeRestorePrivilege"}) {
        EXPECT_EQ(IsEnabled(privilege), IsHeld(privilege));
    }
}

TEST(EnableBackupPrivileges, Token_IsAskedForAdjustingAndQuerying) {
    DWORD access = 0;
    const support::StubImport stub("OpenProcessToken", &::OpenProcessToken,
                                   [&](HANDLE, DWORD rights, PHANDLE) -> BOOL {
                                       access = rights;
                                       return FALSE;
                                   });
    EnableBackupPrivileges();
    EXPECT_EQ(access, DWORD{TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY});
}

TEST(EnableBackupPrivileges, NoToken_AdjustsNothing) {
    bool adjusted = false;
    const support::StubImport token("OpenProcessToken", &::OpenProcessToken,
                                    [](HANDLE, DWORD, PHANDLE) -> BOOL { return FALSE; });
    const support::StubImport adjust(
        "AdjustTokenPrivileges", &::AdjustTokenPrivileges,
        [&](HANDLE, BOOL, PTOKEN_PRIVILEGES, DWORD, PTOKEN_PRIVILEGES, PDWORD) -> BOOL {
            adjusted = true;
            return TRUE;
        });
    EnableBackupPrivileges();
    EXPECT_FALSE(adjusted);
}

// Which privileges are looked up and adjusted, with stubs in place of both calls.
class AdjustedPrivileges : public testing::Test {
protected:
    // `unknown` is the privilege that cannot be looked up; `adjusting` is what each adjusting returns.
    void Enable(const wchar_t* unknown, BOOL adjusting) {
        const support::StubImport lookup("LookupPrivilegeValueW", &::LookupPrivilegeValueW,
                                         [&](LPCWSTR, LPCWSTR name, PLUID luid) -> BOOL {
                                             names_.emplace_back(name);
                                             luid->LowPart = static_cast<DWORD>(names_.size());
                                             return unknown == nullptr || std::wcscmp(name, unknown) != 0;
                                         });
        const support::StubImport adjust(
            "AdjustTokenPrivileges", &::AdjustTokenPrivileges,
            [&](HANDLE, BOOL disable_all, PTOKEN_PRIVILEGES state, DWORD, PTOKEN_PRIVILEGES, PDWORD) -> BOOL {
                EXPECT_EQ(disable_all, FALSE);
                EXPECT_EQ(state->PrivilegeCount, 1U);
                EXPECT_EQ(state->Privileges[0].Attributes, DWORD{SE_PRIVILEGE_ENABLED});
                adjusted_.push_back(state->Privileges[0].Luid.LowPart);
                return adjusting;
            });
        EnableBackupPrivileges();
    }

    std::vector<std::wstring> names_;
    std::vector<DWORD> adjusted_;
};

TEST_F(AdjustedPrivileges, Both_AreEnabled) {
    Enable(nullptr, TRUE);
    EXPECT_THAT(names_, ElementsAre(L"SeBackupPrivilege", L"SeRestorePrivilege"));
    EXPECT_THAT(adjusted_, ElementsAre(1U, 2U));
}

TEST_F(AdjustedPrivileges, FirstUnknown_SecondIsEnabledNevertheless) {
    Enable(L"SeBackupPrivilege", TRUE);
    EXPECT_THAT(adjusted_, ElementsAre(2U));
}

TEST_F(AdjustedPrivileges, AdjustingFails_BothAreTried) {
    Enable(nullptr, FALSE);
    EXPECT_THAT(adjusted_, ElementsAre(1U, 2U));
}

}  // namespace
