#include "tools/orvane/finished_process.h"

#include "tools/orvane/command_line.h"
#include "tools/orvane/unique_handle.h"

#include <array>

namespace host {

namespace {

// A file that nobody else sees and that vanishes with its last handle.
void OpenScratchFile(Handle& file) {
    std::array<wchar_t, MAX_PATH + 1> folder{};
    std::array<wchar_t, MAX_PATH + 1> name{};
    Require(GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()) != 0 &&
                GetTempFileNameW(folder.data(), L"orv", 0, name.data()) != 0,
            "no scratch file can be made");
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    *file.put() = CreateFileW(name.data(), GENERIC_READ | GENERIC_WRITE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited,
                              CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    Require(file.is_open(), "no scratch file can be made");
}

std::string Contents(HANDLE file) {
    std::string text;
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    std::array<char, 1 << 16> buffer{};
    DWORD count = 0;
    while (ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) != FALSE &&
           count != 0) {
        text.append(buffer.data(), count);
    }
    return text;
}

}  // namespace

std::optional<FinishedProcess> RunToEnd(const std::vector<std::wstring>& command, DWORD limit) {
    Handle output;
    OpenScratchFile(output);
    Handle process;
    StartProcess(command, nullptr, output.get(), output.get(), process);
    if (WaitForSingleObject(process.get(), limit) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 1);
        return std::nullopt;
    }
    FinishedProcess finished;
    GetExitCodeProcess(process.get(), &finished.exit_code);
    finished.text = Contents(output.get());
    return finished;
}

}  // namespace host
