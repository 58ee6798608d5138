#include "faults/watch_case.h"

#include "common/windows.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace faults {

namespace {

// Not on the heap, because this is read after a crash or with a corrupt heap.
std::array<char, 512> current{};
std::atomic<std::size_t> current_index{0};
std::atomic<ULONGLONG> since{0};  // 0: no case is running
ULONGLONG limit = 0;

[[noreturn]] void End(const char* how, unsigned exit_code, const char* where = "") {
    std::array<char, 700> line{};
    const int length =
        _snprintf(line.data(), line.size() - 1, "%s %llu %s%s\n", how,
                  static_cast<unsigned long long>(current_index.load()), current.data(), where);
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), line.data(), static_cast<DWORD>(length > 0 ? length : 0),
              &written, nullptr);
    TerminateProcess(GetCurrentProcess(), exit_code);
    std::abort();
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
    HMODULE module = nullptr;
    const void* const address = exception->ExceptionRecord->ExceptionAddress;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    std::array<wchar_t, 260> name{};
    GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size() - 1));
    std::array<char, 160> where{};
    _snprintf(where.data(), where.size() - 1, ": 0x%08lX at %ls+0x%llX",
              exception->ExceptionRecord->ExceptionCode, name.data(),
              static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address) -
                                              reinterpret_cast<std::uintptr_t>(module)));
    End("CRASH", kCrashedExitCode, where.data());
}

// Reached from abort() and terminate().
void OnAbort(int /*signal*/) {
    End("CRASH", kCrashedExitCode, ": abort");
}

DWORD WINAPI Watch(void* /*unused*/) {
    for (;;) {
        Sleep(200);
        const ULONGLONG begun = since;
        if (begun != 0 && GetTickCount64() - begun > limit) {
            End("HANG", kHungExitCode);
        }
    }
}

}  // namespace

void WatchCases(unsigned seconds) {
    limit = seconds * 1000ULL;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(&OnCrash);
    std::signal(SIGABRT, &OnAbort);
    CloseHandle(CreateThread(nullptr, 0, &Watch, nullptr, 0, nullptr));
}

WatchedCase::WatchedCase(const std::string& name, std::size_t index) {
    std::strncpy(current.data(), name.c_str(), current.size() - 1);
    current_index = index;
    since = GetTickCount64();
}

WatchedCase::~WatchedCase() {
    since = 0;
}

}  // namespace faults
