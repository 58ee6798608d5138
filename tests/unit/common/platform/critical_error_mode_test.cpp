#include "common/platform/critical_error_mode.h"

#include <gtest/gtest.h>

namespace {

constexpr DWORD kFails = SEM_FAILCRITICALERRORS;
constexpr DWORD kOther = SEM_NOGPFAULTERRORBOX;

// Gives the thread a mode for the test, and its own mode afterwards.
class CriticalErrors : public testing::TestWithParam<DWORD> {
protected:
    CriticalErrors() { SetThreadErrorMode(GetParam(), &before_); }
    ~CriticalErrors() override { SetThreadErrorMode(before_, nullptr); }

private:
    DWORD before_ = 0;
};

TEST_P(CriticalErrors, Scope_AddsTheFlagAndRestoresTheMode) {
    {
        const FailCriticalErrors mode;
        EXPECT_EQ(GetThreadErrorMode(), GetParam() | kFails);
    }
    EXPECT_EQ(GetThreadErrorMode(), GetParam());
}

TEST_P(CriticalErrors, HostInside_HasItsMode) {
    const FailCriticalErrors mode;
    {
        const HostErrorMode host;
        EXPECT_EQ(GetThreadErrorMode(), GetParam());
    }
    EXPECT_EQ(GetThreadErrorMode(), GetParam() | kFails);
}

TEST_P(CriticalErrors, HostOutside_ChangesNothing) {
    const HostErrorMode host;
    EXPECT_EQ(GetThreadErrorMode(), GetParam());
}

TEST_P(CriticalErrors, ModeThatTheHostSetsInside_IsKept) {
    {
        const FailCriticalErrors mode;
        {
            const HostErrorMode host;
            SetThreadErrorMode(SEM_NOOPENFILEERRORBOX, nullptr);
        }
        EXPECT_EQ(GetThreadErrorMode(), kFails | SEM_NOOPENFILEERRORBOX);
    }
    EXPECT_EQ(GetThreadErrorMode(), DWORD{SEM_NOOPENFILEERRORBOX});
}

// A callback that calls an export again.
TEST_P(CriticalErrors, ScopeInsideTheHost_HasAHostOfItsOwn) {
    const FailCriticalErrors outer;
    {
        const HostErrorMode host;
        {
            const FailCriticalErrors inner;
            const HostErrorMode inner_host;
            EXPECT_EQ(GetThreadErrorMode(), GetParam());
        }
        EXPECT_EQ(GetThreadErrorMode(), GetParam());
    }
    EXPECT_EQ(GetThreadErrorMode(), GetParam() | kFails);
}

INSTANTIATE_TEST_SUITE_P(HostModes, CriticalErrors, testing::Values(0, kOther, kFails, kFails | kOther));

}  // namespace
