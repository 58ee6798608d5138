#include "tools/orvane/child_process.h"

#include "tools/orvane/command_line.h"

#include <array>

namespace host {

namespace {

// An anonymous pipe cannot be read with a time limit, so the output is a named one.
std::wstring PipeName() {
    static unsigned count = 0;
    return L"\\\\.\\pipe\\orvane-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::wstring>& command) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Handle child_input;
    Handle child_output;
    Require(CreatePipe(child_input.put(), input_.put(), &inherited, 0) != FALSE, "no pipe can be made");
    SetHandleInformation(input_.get(), HANDLE_FLAG_INHERIT, 0);
    const std::wstring name = PipeName();
    constexpr DWORD kBytes = 1 << 16;
    *output_.put() = CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED,
                                      PIPE_TYPE_BYTE | PIPE_WAIT, 1, kBytes, kBytes, 0, nullptr);
    Require(output_.get() != INVALID_HANDLE_VALUE, "no pipe can be made");
    *child_output.put() = CreateFileW(name.c_str(), GENERIC_WRITE, 0, &inherited, OPEN_EXISTING, 0, nullptr);
    Require(child_output.get() != INVALID_HANDLE_VALUE, "no pipe can be made");
    *read_.put() = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    Require(read_.get() != nullptr, "no event can be made");

    StartProcess(command, child_input.get(), child_output.get(), nullptr, process_);
}

ChildProcess::~ChildProcess() = default;

ChildProcess::Outcome ChildProcess::Exchange(const std::string& line, std::string& answer, DWORD limit) {
    const std::string sent = line + '\n';
    DWORD written = 0;
    if (WriteFile(input_.get(), sent.data(), static_cast<DWORD>(sent.size()), &written, nullptr) == FALSE) {
        return Outcome::kEnded;
    }
    return ReadLine(answer, limit);
}

ChildProcess::Outcome ChildProcess::ReadLine(std::string& line, DWORD limit) {
    const ULONGLONG deadline = GetTickCount64() + limit;
    std::array<char, 1 << 16> buffer{};
    std::size_t searched = 0;
    for (;;) {
        const std::size_t end = unread_.find('\n', searched);
        if (end != std::string::npos) {
            line = unread_.substr(0, end);
            unread_.erase(0, end + 1);
            return Outcome::kAnswered;
        }
        searched = unread_.size();
        OVERLAPPED overlapped{};
        overlapped.hEvent = read_.get();
        DWORD count = 0;
        if (ReadFile(output_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, &overlapped) ==
                FALSE &&
            GetLastError() != ERROR_IO_PENDING) {
            return Outcome::kEnded;
        }
        const ULONGLONG now = GetTickCount64();
        const DWORD left = now < deadline ? static_cast<DWORD>(deadline - now) : 0;
        if (WaitForSingleObject(read_.get(), left) != WAIT_OBJECT_0) {
            CancelIo(output_.get());
            GetOverlappedResult(output_.get(), &overlapped, &count, TRUE);
            return Outcome::kTimedOut;
        }
        if (GetOverlappedResult(output_.get(), &overlapped, &count, FALSE) == FALSE) {
            return Outcome::kEnded;
        }
        unread_.append(buffer.data(), count);
    }
}

void ChildProcess::End() {
    TerminateProcess(process_.get(), 1);
}

DWORD ChildProcess::ExitCode() const {
    constexpr DWORD kPatience = 5000;
    WaitForSingleObject(process_.get(), kPatience);
    DWORD code = 0;
    GetExitCodeProcess(process_.get(), &code);
    return code;
}

}  // namespace host
