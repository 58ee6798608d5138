#pragma once

#include "common/windows.h"
#include "machine/recorder/observe/question.h"
#include "tools/orvane/child_process.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Asks questions in a child process of this program (`orvane answer`), so that a question that does not come
// back can be ended. A new child is started for the next question after that.
class AskingProcess {
public:
    // `command` is the program and the arguments of the child, see AskingCommand. `limit` is the time for one
    // answer in milliseconds.
    AskingProcess(std::vector<std::wstring> command, DWORD limit);
    ~AskingProcess();
    AskingProcess(const AskingProcess&) = delete;
    AskingProcess& operator=(const AskingProcess&) = delete;

    // Throws std::runtime_error if no child can be started.
    recorder::Answer Ask(const recorder::Question& question);

private:
    std::vector<std::wstring> command_;
    DWORD limit_;
    std::unique_ptr<ChildProcess> child_;
};

// A child that asks the machine of the description or, without one, the system.
std::vector<std::wstring> AskingCommand(const std::optional<std::filesystem::path>& machine);

// The other side: reads a question a line from standard input and writes its answer as a line to standard
// output, until the input ends. Returns the exit code. Throws machine::DescriptionError and std::exceptions.
int AnswerQuestions(const std::optional<std::filesystem::path>& machine);

}  // namespace host
