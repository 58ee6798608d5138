#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <gmock/gmock.h>

#include "common/windows.h"
#include "machine/redirect.h"
#include "support/watchdog.h"

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

}  // namespace

// Beside gtest's own flags: --test-limit=SECONDS, how long one test may run.
int main(int argument_count, char** arguments) {
    testing::InitGoogleMock(&argument_count, arguments);
    support::ReportCrashes();
    // Before the first use of the library's bound tables. Without a simulation the system itself answers.
    if (!machine::PutModuleOnSimulation(GetModuleHandleW(nullptr))) {
        std::fputs("this program cannot be put on the simulation\n", stderr);
        return EXIT_FAILURE;
    }
    auto watchdog = std::make_unique<support::Watchdog>(LimitFrom(argument_count, arguments));
    testing::UnitTest::GetInstance()->listeners().Append(watchdog.release());
    return RUN_ALL_TESTS();
}
