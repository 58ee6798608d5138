#include "tools/orvane/asking_process.h"

#include "machine/recorder/observe/observations_file.h"
#include "tools/orvane/program_path.h"

namespace host {

AskingProcess::AskingProcess(std::vector<std::wstring> command, DWORD limit)
    : command_(std::move(command)), limit_(limit) {}

AskingProcess::~AskingProcess() = default;

recorder::Answer AskingProcess::Ask(const recorder::Question& question) {
    if (!child_) {
        child_ = std::make_unique<ChildProcess>(command_);
    }
    std::string line;
    const ChildProcess::Outcome outcome =
        child_->Exchange(recorder::ObservationLine({question, {}}), line, limit_);
    if (outcome == ChildProcess::Outcome::kAnswered) {
        return recorder::ParseObservation(line).answer;
    }
    recorder::Answer answer;
    answer.blocks = outcome == ChildProcess::Outcome::kTimedOut;
    answer.crashed = !answer.blocks;
    if (answer.blocks) {
        child_->End();
    } else {
        answer.error = child_->ExitCode();
    }
    child_.reset();
    return answer;
}

std::vector<std::wstring> AskingCommand(const std::optional<std::filesystem::path>& machine) {
    std::vector<std::wstring> command = {ProgramPath().wstring(), L"answer"};
    if (machine) {
        command.insert(command.end(), {L"--machine", machine->wstring()});
    }
    return command;
}

}  // namespace host
