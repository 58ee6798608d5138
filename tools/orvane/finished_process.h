#pragma once

#include "common/windows.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct FinishedProcess {
    DWORD exit_code = 0;
    std::string text;  // standard output and standard error together
};

// Runs a program with its arguments to its end. None if it did not end within `limit` milliseconds and was
// ended. Throws std::runtime_error if it cannot be started.
std::optional<FinishedProcess> RunToEnd(const std::vector<std::wstring>& command, DWORD limit);

}  // namespace host
