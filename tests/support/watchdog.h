#pragma once

#include "common/windows.h"

#include <gtest/gtest.h>

#include <string>

namespace support {

// Exit codes of a test program that was ended early.
inline constexpr unsigned kHungExitCode = 86;
inline constexpr unsigned kCrashedExitCode = 87;

// Ends the process with kHungExitCode, and prints the test's name, when a test takes longer than `limit`
// seconds. Append it to gtest's listeners, which then own it.
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
    SRWLOCK lock_ = SRWLOCK_INIT;  // protects phase_ and since_
    std::string phase_;            // full name of the running test, or a text for the time between tests
    ULONGLONG since_;              // start of the phase, from GetTickCount64()
    HANDLE finished_;              // event that ends the thread
    HANDLE thread_;
};

// From now on a crash ends the process at once with kCrashedExitCode, without a debugger or a dialog, and
// prints the name of the running test.
void ReportCrashes();

}  // namespace support
