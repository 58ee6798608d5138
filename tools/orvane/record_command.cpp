#include "tools/orvane/record_command.h"

#include "documents/text/utf8.h"
#include "machine/description/text.h"
#include "machine/recorder/describe/describe.h"
#include "machine/recorder/describe/replay.h"
#include "machine/recorder/observe/observations_file.h"
#include "machine/recorder/prove/proof.h"
#include "machine/recorder/redact/map_text.h"
#include "machine/recorder/redact/redact.h"
#include "tools/orvane/administrator.h"
#include "tools/orvane/asking_process.h"
#include "tools/orvane/library_runs.h"
#include "tools/orvane/private_file.h"
#include "tools/orvane/progress_line.h"
#include "tools/orvane/redaction.h"
#include "tools/orvane/whole_file.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>

namespace host {

namespace {

constexpr DWORD kAnswerLimit = 30'000;  // milliseconds

using Findings = std::vector<recorder::Finding>;

recorder::Progress ShownOn(ProgressLine& line, const std::string& doing) {
    return [&line, doing](std::size_t asked, const recorder::Question& next) {
        line.Show(doing + std::to_string(asked) + ", " + next.call + " " + machine::Narrow(next.object));
    };
}

recorder::Observations ObserveMachine(const RecordOptions& options, std::ostream& errors,
                                      ProgressLine& progress) {
    const bool administrator =
        options.machine || RunsAsAdministrator();  // a described machine refuses nobody
    if (!administrator) {
        errors << "orvane: without administrator's rights, disks and volumes may refuse to answer\n";
    }
    AskingProcess process(AskingCommand(options.machine), kAnswerLimit);
    recorder::Observations observations =
        recorder::Observe([&](const recorder::Question& question) { return process.Ask(question); },
                          ShownOn(progress, "question "));
    observations.circumstances.administrator = administrator;
    return observations;
}

// A machine as the reader of the format sees it.
struct Recording {
    std::string text;
    machine::Description machine;
};

Recording DescribeMachine(const recorder::Observations& observations) {
    Recording recording;
    try {
        recording.text = machine::WriteDescription(recorder::Describe(observations));
        recording.machine = machine::ParseDescription(recording.text, "the recording");
    } catch (const machine::DescriptionError& error) {
        throw std::runtime_error(std::string("the machine cannot be described: ") + error.what());
    }
    return recording;
}

Findings CompareWithRecording(const recorder::Observations& observations, const machine::Description& machine,
                              ProgressLine& progress) {
    return recorder::CompareAnswers(
        observations, recorder::Replay(machine, observations, ShownOn(progress, "proof of question ")));
}

// Adds what `compare` finds. The files are written by then: what stops a comparison leaves them unproved.
void AddFindings(const char* what, const std::function<Findings()>& compare, Findings& findings) {
    try {
        const Findings found = compare();
        findings.insert(findings.end(), found.begin(), found.end());
    } catch (const std::exception& error) {
        findings.push_back({recorder::Finding::Kind::kUnexplained,
                            std::string(what) + " cannot be compared: " + error.what()});
    }
}

// Refuses before the machine is asked for minutes.
void RequireUsable(const RecordOptions& options) {
    const Existing existing = options.force ? Existing::kReplaced : Existing::kKept;
    std::set<std::filesystem::path> files;
    for (const auto& file : {std::optional(options.output), options.observations, options.map}) {
        if (!file) {
            continue;
        }
        RequireFree(*file, existing);
        if (!files.insert(std::filesystem::weakly_canonical(*file)).second) {
            throw UsageError("two of --output, --observations and --map name the same file");
        }
    }
    if (options.machine) {
        machine::LoadDescription(*options.machine);  // refused here, and not by the asking process
    }
}

void WriteFiles(const RecordOptions& options, const recorder::Observations& observations,
                const Recording& recording, const recorder::Replacements& replacements) {
    std::vector<WholeFile> files = {{options.output, recording.text}};
    if (options.observations) {
        files.push_back({*options.observations, recorder::ObservationsText(observations)});
    }
    if (options.map) {
        files.push_back({*options.map, recorder::MapText(replacements), true});
    }
    WriteWholeFiles(files, options.force ? Existing::kReplaced : Existing::kKept);
}

// What the library makes of the machine and of its description. A redacted description has other names than
// the machine, so the machine is described with its own once more for this.
Findings CompareLibrary(const RecordOptions& options, const recorder::Observations& observed,
                        const recorder::Replacements& replacements, ProgressLine& progress) {
    recorder::ShownLine shown = std::identity();
    std::optional<TemporaryPrivateFile> unredacted;
    if (options.redact) {
        unredacted.emplace(DescribeMachine(observed).text);
        shown = WithoutPrivateValues(replacements);
    }
    return CompareLibraryRuns(observed, options.machine, unredacted ? unredacted->path() : options.output,
                              shown, [&](const std::string& text) { progress.Show(text); });
}

// Prints the findings: first what is unexplained, then what is explained, then what changes by itself.
// Returns whether nothing is unexplained.
bool Report(const Findings& findings, std::ostream& out) {
    using Kind = recorder::Finding::Kind;
    for (const Kind kind : {Kind::kUnexplained, Kind::kExplained, Kind::kChanging}) {
        for (const recorder::Finding& finding : findings) {
            if (finding.kind == kind) {
                out << documents::Escaped(recorder::LineOf(finding)) << '\n';
            }
        }
    }
    return std::none_of(findings.begin(), findings.end(),
                        [](const recorder::Finding& finding) { return finding.kind == Kind::kUnexplained; });
}

int Result(bool explained, bool library_ran, std::size_t questions, std::ostream& out) {
    out << questions << " questions"
        << (!explained     ? ", something is unexplained"
            : !library_ran ? ", all explained; the library was not run"
                           : ", proved")
        << '\n';
    return explained && library_ran ? kExitDone : kExitUnproved;
}

}  // namespace

int Record(const RecordOptions& options, std::ostream& out, std::ostream& errors) {
    RequireUsable(options);
    Findings findings;
    std::size_t questions = 0;
    recorder::Replacements replacements;
    {
        ProgressLine progress(errors);
        const recorder::Observations observed = ObserveMachine(options, errors, progress);
        questions = observed.all().size();
        const recorder::Observations redacted = recorder::Redact(observed, replacements);
        const recorder::Observations& kept = options.redact ? redacted : observed;
        const Recording recording = DescribeMachine(kept);
        if (options.redact) {
            RequireNoLeak(replacements, kept, recording.text);
        }
        WriteFiles(options, kept, recording, replacements);
        AddFindings(
            "the answers", [&] { return CompareWithRecording(kept, recording.machine, progress); }, findings);
        if (options.proof) {
            AddFindings(
                "the library's outputs",
                [&] { return CompareLibrary(options, observed, replacements, progress); }, findings);
        }
    }
    const int result = Result(Report(findings, out), options.proof, questions, out);
    if (!options.redact) {
        out << PrivateValuesInWords(machine::Narrow(options.output.wstring()), replacements) << '\n';
    }
    return result;
}

int Prove(const ProveOptions& options, std::ostream& out, std::ostream& errors) {
    Findings findings;
    const recorder::Observations observations = recorder::LoadObservations(options.observations);
    {
        ProgressLine progress(errors);
        findings = CompareWithRecording(observations, DescribeMachine(observations).machine, progress);
    }
    const bool explained = Report(findings, out);
    out << observations.all().size() << " questions, "
        << (explained ? "all explained" : "something is unexplained") << '\n';
    return explained ? kExitDone : kExitUnproved;
}

}  // namespace host
