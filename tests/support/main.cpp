#include "common/windows.h"
#include "machine/simulation/redirect.h"
#include "support/watchdog.h"
#include "support/wine.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

constexpr unsigned kTestLimit = 180;  // seconds
constexpr std::string_view kLimitFlag = "--test-limit=";

unsigned LimitFrom(int argument_count, char** arguments) {
    for (int i = 1; i < argument_count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument.starts_with(kLimitFlag)) {
            return static_cast<unsigned>(std::atoi(arguments[i] + kLimitFlag.size()));
        }
    }
    return kTestLimit;
}

// A run without tests fails. Under Wine a run with skipped tests fails too, because every test has what it
// needs there.
bool TestedAll(const testing::UnitTest& run) {
    if (run.test_to_run_count() == 0) {
        std::fputs("no test ran\n", stderr);
        return false;
    }
    if (support::UnderWine() && run.skipped_test_count() != 0) {
        std::fputs("tests were skipped, which none may be under Wine\n", stderr);
        return false;
    }
    return true;
}

}  // namespace

// Takes gtest's flags and --test-limit=SECONDS, the time limit of one test.
int main(int argument_count, char** arguments) {
    testing::InitGoogleMock(&argument_count, arguments);
    support::ReportCrashes();
    // Must come before the first use of the library's bound tables. Without a simulation, calls go to the
    // real system.
    if (!machine::PutModuleOnSimulation(GetModuleHandleW(nullptr))) {
        std::fputs("this program cannot be put on the simulation\n", stderr);
        return EXIT_FAILURE;
    }
    auto watchdog = std::make_unique<support::Watchdog>(LimitFrom(argument_count, arguments));
    testing::UnitTest::GetInstance()->listeners().Append(watchdog.release());
    const int status = RUN_ALL_TESTS();
    const bool only_listed = GTEST_FLAG_GET(list_tests);
    return status != 0 || only_listed || TestedAll(*testing::UnitTest::GetInstance()) ? status : EXIT_FAILURE;
}
