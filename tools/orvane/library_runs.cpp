#include "tools/orvane/library_runs.h"

#include "machine/recorder/observe/answer_texts.h"
#include "tools/orvane/finished_process.h"
#include "tools/orvane/program_path.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

// What is run: the arguments of this program after its name.
struct LibraryRun {
    std::string subject;  // "format 3, all volumes selected"
    std::vector<std::wstring> arguments;
};

// Messages of this program itself, which say what it ran on.
constexpr std::string_view kOwnMessage = "orvane: ";

std::string WithoutOwnMessages(const std::string& text) {
    std::string kept;
    for (std::size_t first = 0; first < text.size();) {
        const std::size_t end = std::min(text.find('\n', first), text.size() - 1) + 1;
        const std::string line = text.substr(first, end - first);
        kept += line.starts_with(kOwnMessage) ? "" : line;
        first = end;
    }
    return kept;
}

// The output of one run with its exit code; none if it did not end in time.
std::optional<std::string> Output(const LibraryRun& run, const std::optional<std::filesystem::path>& machine,
                                  std::uint32_t limit) {
    std::vector<std::wstring> command = {ProgramPath().wstring()};
    command.insert(command.end(), run.arguments.begin(), run.arguments.end());
    if (machine) {
        command.insert(command.end(), {L"--machine", machine->wstring()});
    }
    const std::optional<FinishedProcess> finished = RunToEnd(command, limit);
    if (!finished) {
        return std::nullopt;
    }
    return WithoutOwnMessages(finished->text) + "exit code " + std::to_string(finished->exit_code) + '\n';
}

std::vector<LibraryRun> LibraryRuns(const recorder::Observations& observations) {
    std::vector<std::wstring> selection;
    for (const std::wstring& volume : recorder::ListedNames(observations, "FindFirstVolumeW", L"")) {
        selection.insert(selection.end(), {L"--volume", volume});
    }
    std::vector<LibraryRun> runs;
    const auto add = [&](const std::string& subject, std::vector<std::wstring> arguments, bool selected) {
        if (selected) {
            arguments.insert(arguments.end(), selection.begin(), selection.end());
        }
        runs.push_back({subject + (selected ? ", all volumes selected" : ""), std::move(arguments)});
    };
    for (const wchar_t* format : {L"1", L"2", L"3"}) {
        const std::string subject = "format " + std::to_string(format[0] - L'0');
        add(subject, {L"capture", L"--format", format}, false);
        if (!selection.empty()) {
            add(subject, {L"capture", L"--format", format}, true);
        }
    }
    add("dump of wmi", {L"dump", L"wmi"}, false);
    add("dump of the disks", {L"dump", L"disks"}, false);
    add("dump of the volumes", {L"dump", L"volumes"}, false);
    add("dump of the firmware", {L"dump", L"firmware"}, false);
    add("check", {L"check", L"--json"}, !selection.empty());
    return runs;
}

bool AnswerDidNotCome(const recorder::Observations& observations) {
    return std::any_of(observations.all().begin(), observations.all().end(),
                       [](const recorder::Observation& observation) { return observation.answer.blocks; });
}

// The run did not end on one of the machines. On the recorded one it met the same call that did not answer.
recorder::Finding NoEnd(const recorder::Observations& observations, const LibraryRun& run, bool here,
                        std::uint32_t limit) {
    constexpr std::uint32_t kSecond = 1000;
    const bool explained = here && AnswerDidNotCome(observations);
    return {explained ? recorder::Finding::Kind::kExplained : recorder::Finding::Kind::kUnexplained,
            run.subject + ": no end within " + std::to_string(limit / kSecond) + " seconds " +
                (here ? "here" : "there")};
}

}  // namespace

std::vector<recorder::Finding> CompareLibraryRuns(const recorder::Observations& observations,
                                                  const std::optional<std::filesystem::path>& machine,
                                                  const std::filesystem::path& description,
                                                  const recorder::ShownLine& shown,
                                                  const std::function<void(const std::string&)>& progress,
                                                  std::uint32_t limit) {
    std::vector<recorder::Finding> findings;
    for (const LibraryRun& run : LibraryRuns(observations)) {
        progress("the library: " + run.subject);
        const std::optional<std::string> here = Output(run, machine, limit);
        const std::optional<std::string> there = Output(run, description, limit);
        if (!here || !there) {
            findings.push_back(NoEnd(observations, run, !here, limit));
            continue;
        }
        const auto own = recorder::CompareOutputs(run.subject, *here, *there, shown);
        findings.insert(findings.end(), own.begin(), own.end());
    }
    return findings;
}

}  // namespace host
