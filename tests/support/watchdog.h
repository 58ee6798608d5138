#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace support {

/// Exit codes of a test program that did not come to its end.
inline constexpr unsigned kHungExitCode = 86;
inline constexpr unsigned kCrashedExitCode = 87;

/// Names the test that runs, and ends the process with kHungExitCode when it takes longer than `limit`. Hand
/// it to gtest's listeners, which own it from then on.
class Watchdog : public testing::EmptyTestEventListener {
public:
    explicit Watchdog(std::chrono::seconds limit);
    ~Watchdog() override;

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

private:
    void Watch();
    void Enter(std::string phase);

    const std::chrono::seconds limit_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string phase_;  // what runs: the full name of a test, or what comes between tests
    std::chrono::steady_clock::time_point since_;
    bool finished_ = false;
    std::thread thread_;  // last: it uses the others
};

/// From now on a crash ends the process at once, without a debugger or a dialog, with kCrashedExitCode and
/// the name of the test that ran.
void ReportCrashes();

}  // namespace support
