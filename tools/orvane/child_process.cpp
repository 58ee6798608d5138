#include "tools/orvane/child_process.h"

#include <array>
#include <stdexcept>

namespace host {

namespace {

void Require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(std::string(what) + ", error " + std::to_string(GetLastError()));
    }
}

// By the rules with which the C runtime splits a command line.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

std::wstring CommandLine(const std::vector<std::wstring>& command) {
    std::wstring line;
    for (const std::wstring& argument : command) {
        line += (line.empty() ? L"" : L" ") + Quoted(argument);
    }
    return line;
}

// An anonymous pipe cannot be read with a time limit, so the output is a named one.
std::wstring PipeName() {
    static unsigned count = 0;
    return L"\\\\.\\pipe\\orvane-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
}

}  // namespace

void ChildProcess::Handle::Close() {
    if (handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE) {
        CloseHandle(handle_);
    }
    handle_ = nullptr;
}

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

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = child_input.get();
    startup.hStdOutput = child_output.get();
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started{};
    std::wstring line = CommandLine(command);
    Require(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                           &started) != FALSE,
            "a child process cannot be started");
    CloseHandle(started.hThread);
    *process_.put() = started.hProcess;
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
