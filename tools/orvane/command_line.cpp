#include "tools/orvane/command_line.h"

#include <stdexcept>

namespace host {

namespace {

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

HANDLE Or(HANDLE handle, DWORD standard) {
    return handle == nullptr ? GetStdHandle(standard) : handle;
}

}  // namespace

void Require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(std::string(what) + ", error " + std::to_string(GetLastError()));
    }
}

std::wstring CommandLine(const std::vector<std::wstring>& command) {
    std::wstring line;
    for (const std::wstring& argument : command) {
        line += (line.empty() ? L"" : L" ") + Quoted(argument);
    }
    return line;
}

void StartProcess(const std::vector<std::wstring>& command, HANDLE input, HANDLE output, HANDLE errors,
                  Handle& process) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = Or(input, STD_INPUT_HANDLE);
    startup.hStdOutput = Or(output, STD_OUTPUT_HANDLE);
    startup.hStdError = Or(errors, STD_ERROR_HANDLE);
    PROCESS_INFORMATION started{};
    std::wstring line = CommandLine(command);
    Require(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                           &started) != FALSE,
            "a child process cannot be started");
    CloseHandle(started.hThread);
    *process.put() = started.hProcess;
}

}  // namespace host
