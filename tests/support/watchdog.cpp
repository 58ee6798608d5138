#include "support/watchdog.h"

#include <utility>

#include "common/windows.h"

namespace support {
namespace {

constexpr const char* kOutsideTests = "between tests";

// Straight to the handle: the thread that hangs or crashed may hold the locks of the runtime's streams.
void Say(const std::string& text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written,
              nullptr);
}

[[noreturn]] void End(unsigned exit_code) {
    // Not ExitProcess, which waits for locks as well.
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

Watchdog::Watchdog(std::chrono::seconds limit)
    : limit_(limit),
      phase_(kOutsideTests),
      since_(std::chrono::steady_clock::now()),
      thread_([this] { Watch(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mutex_);
        finished_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void Watchdog::OnTestStart(const testing::TestInfo& test) {
    Enter(FullName(test));
}

void Watchdog::OnTestEnd(const testing::TestInfo& /*test*/) {
    Enter(kOutsideTests);
}

void Watchdog::Enter(std::string phase) {
    // The watching thread is not woken: it looks at the clock when the older phase would have run out.
    const std::lock_guard lock(mutex_);
    phase_ = std::move(phase);
    since_ = std::chrono::steady_clock::now();
}

void Watchdog::Watch() {
    std::unique_lock lock(mutex_);
    while (!finished_) {
        const auto deadline = since_ + limit_;
        if (std::chrono::steady_clock::now() >= deadline) {
            Say("\n[   HUNG   ] " + phase_ + ", longer than " + std::to_string(limit_.count()) + " s\n");
            End(kHungExitCode);
        }
        changed_.wait_until(lock, deadline, [this] { return finished_; });
    }
}

void ReportCrashes() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(&OnCrash);
}

}  // namespace support
