#include "common/platform/privileges.h"

#include "support/stub.h"
#include "unit/common/platform/token_privileges.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

constexpr const wchar_t* kBoth[] = {L"SeBackupPrivilege", L"SeRestorePrivilege"};

TEST(EnableBackupPrivileges, PrivilegesThatAreHeld_AreEnabledAfterwards) {
    if (!UserHoldsBackupPrivileges()) {
        GTEST_SKIP() << "for a user who may back up and restore";
    }
    const Token token = OwnToken();
    for (const wchar_t* const privilege : kBoth) {
        Adjust(token.get(), privilege, 0);
        ASSERT_FALSE(IsEnabled(token.get(), privilege));
    }

    EnableBackupPrivileges();

    for (const wchar_t* const privilege : kBoth) {
        EXPECT_TRUE(IsEnabled(token.get(), privilege));
    }
}

// The process token is replaced by a copy that lacks one of the privileges.
class PrivilegeNotHeld : public testing::TestWithParam<int> {};

TEST_P(PrivilegeNotHeld, EnableBackupPrivileges_LeavesItAndEnablesTheOther) {
    if (!UserHoldsBackupPrivileges()) {
        GTEST_SKIP() << "for a user who may back up and restore";
    }
    const wchar_t* const missing = kBoth[GetParam()];
    const wchar_t* const other = kBoth[1 - GetParam()];
    HANDLE copy = nullptr;
    ASSERT_TRUE(DuplicateTokenEx(OwnToken(TOKEN_DUPLICATE).get(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY,
                                 nullptr, SecurityImpersonation, TokenPrimary, &copy));
    const Token token(copy);
    Adjust(copy, missing, SE_PRIVILEGE_REMOVED);
    Adjust(copy, other, 0);
    ASSERT_FALSE(IsHeld(copy, missing));
    ASSERT_FALSE(IsEnabled(copy, other));
    const support::StubImport open(
        "OpenProcessToken", &::OpenProcessToken, [&](HANDLE, DWORD access, PHANDLE handle) -> BOOL {
            return DuplicateHandle(GetCurrentProcess(), copy, GetCurrentProcess(), handle, access, FALSE, 0);
        });

    EnableBackupPrivileges();

    EXPECT_FALSE(IsHeld(copy, missing));
    EXPECT_TRUE(IsEnabled(copy, other));
}

INSTANTIATE_TEST_SUITE_P(BackupAndRestore, PrivilegeNotHeld, testing::Values(0, 1));

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

// Replaces both privilege functions, and records which privileges are looked up and adjusted.
class AdjustedPrivileges : public testing::Test {
protected:
    // `unknown` is the privilege whose look-up fails; `adjusting` is the result of AdjustTokenPrivileges.
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
