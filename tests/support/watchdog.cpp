#include "support/watchdog.h"

#include <cstdlib>
#include <utility>

namespace support {
namespace {

constexpr const char* kOutsideTests = "between tests";
constexpr DWORD kLookMilliseconds = 200;

// Writes straight to the handle, because the thread that hangs or crashed may hold the locks of stderr.
void Say(const std::string& text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written,
              nullptr);
}

[[noreturn]] void End(unsigned exit_code) {
    // ExitProcess also waits for locks.
    TerminateProcess(GetCurrentProcess(), exit_code);
    std::abort();
}

std::string FullName(const testing::TestInfo& test) {
    return std::string(test.test_suite_name()) + "." + test.name();
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    char code[32] = {};
    _snprintf(code, sizeof(code) - 1, "0x%08lX", exception->ExceptionRecord->ExceptionCode);
    Say("\n[ CRASHED  ] " + (test == nullptr ? std::string(kOutsideTests) : FullName(*test)) +
        ", exception " + code + "\n");
    End(kCrashedExitCode);
}

}  // namespace

Watchdog::Watchdog(unsigned limit)
    : limit_(limit),
      phase_(kOutsideTests),
      since_(GetTickCount64()),
      finished_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      thread_(CreateThread(nullptr, 0, &Watchdog::Run, this, 0, nullptr)) {
    if (finished_ == nullptr || thread_ == nullptr) {
        Say("the watchdog cannot be started\n");
        End(EXIT_FAILURE);
    }
}

Watchdog::~Watchdog() {
    SetEvent(finished_);
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    CloseHandle(finished_);
}

void Watchdog::OnTestStart(const testing::TestInfo& test) {
    Enter(FullName(test));
}

void Watchdog::OnTestEnd(const testing::TestInfo& /*test*/) {
    Enter(kOutsideTests);
}

void Watchdog::Enter(std::string phase) {
    AcquireSRWLockExclusive(&lock_);
    phase_ = std::move(phase);
    since_ = GetTickCount64();
    ReleaseSRWLockExclusive(&lock_);
}

DWORD WINAPI Watchdog::Run(void* watchdog) {
    static_cast<Watchdog*>(watchdog)->Watch();
    return 0;
}

void Watchdog::Watch() {
    while (WaitForSingleObject(finished_, kLookMilliseconds) == WAIT_TIMEOUT) {
        AcquireSRWLockExclusive(&lock_);
        if (GetTickCount64() - since_ >= limit_ * 1000ULL) {
            Say("\n[   HUNG   ] " + phase_ + ", longer than " + std::to_string(limit_) + " s\n");
            End(kHungExitCode);
        }
        ReleaseSRWLockExclusive(&lock_);
    }
}

void ReportCrashes() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(&OnCrash);
}

}  // namespace support
