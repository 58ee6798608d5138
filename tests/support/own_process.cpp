#include "support/own_process.h"

#include "common/windows.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <string>

namespace support {
namespace {

constexpr wchar_t kMark[] = L"ORVANE_TEST_OWN_PROCESS";

struct Process {
    PROCESS_INFORMATION information{};

    ~Process() {
        CloseHandle(information.hThread);
        CloseHandle(information.hProcess);
    }
};

std::wstring CommandLine(const std::string& test) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return L"\"" + std::wstring(program) + L"\" --gtest_brief=1 --gtest_color=no --gtest_filter=" +
           Wide(test);
}

// Runs one test in a new process. Returns its exit code, or -1 if the process could not be started.
long RunAlone(const std::string& test) {
    std::wstring command = CommandLine(test);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    Process process;
    SetEnvironmentVariableW(kMark, L"1");
    const BOOL started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                        &startup, &process.information);
    SetEnvironmentVariableW(kMark, nullptr);
    if (started == FALSE) {
        return -1;
    }
    DWORD exit_code = 0;
    WaitForSingleObject(process.information.hProcess, INFINITE);
    GetExitCodeProcess(process.information.hProcess, &exit_code);
    return static_cast<long>(exit_code);
}

}  // namespace

bool InOwnProcess() {
    if (GetEnvironmentVariableW(kMark, nullptr, 0) != 0) {
        return true;
    }
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test->test_suite_name()) + "." + test->name();
    EXPECT_EQ(RunAlone(name), 0) << name << " fails in a process of its own";
    return false;
}

}  // namespace support
