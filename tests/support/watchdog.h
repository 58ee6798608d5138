#pragma once

#include "common/windows.h"

#include <gtest/gtest.h>

#include <string>

namespace support {

// Exit codes of a test program that did not come to its end.
inline constexpr unsigned kHungExitCode = 86;
inline constexpr unsigned kCrashedExitCode = 87;

// Names the test that runs, and ends the process with kHungExitCode when it takes longer than `limit`
// seconds. Hand it to gtest's listeners, which own it from then on.
class Watchdog : public testing::EmptyTestEventListener {
public:
    explicit Watchdog(unsigned limit);
    ~Watchdog() override;

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

private:
    static DWORD WINAPI Run(void* watchdog);
    void Watch();
    void Enter(std::string phase);

    const unsigned limit_;
    SRWLOCK lock_ = SRWLOCK_INIT;  // of the phase and its start
    std::string phase_;            // what runs: the full name of a test, or what comes between tests
    ULONGLONG since_;              // by GetTickCount64()
    HANDLE finished_;              // an event
    HANDLE thread_;
};

// From now on a crash ends the process at once, without a debugger or a dialog, with kCrashedExitCode and
// the name of the test that ran.
void ReportCrashes();

}  // namespace support
