#include "tools/orvane/record_command.h"

#include "machine/description/text.h"
#include "machine/recorder/observe/observations_file.h"
#include "machine/recorder/observe/observe.h"
#include "tools/orvane/administrator.h"
#include "tools/orvane/asking_process.h"
#include "tools/orvane/progress_line.h"
#include "tools/orvane/whole_file.h"

namespace host {

namespace {

constexpr DWORD kAnswerLimit = 30'000;  // milliseconds

recorder::Observations ObserveMachine(const RecordOptions& options, std::ostream& errors) {
    const bool administrator = RunsAsAdministrator();
    if (!administrator) {
        errors << "orvane: without administrator's rights, disks and volumes may refuse to answer\n";
    }
    AskingProcess process(AskingCommand(options.machine), kAnswerLimit);
    ProgressLine progress(errors);
    recorder::Observations observations =
        recorder::Observe([&](const recorder::Question& question) { return process.Ask(question); },
                          [&](std::size_t asked, const recorder::Question& next) {
                              progress.Show(std::to_string(asked) + " questions, " + next.call + " " +
                                            machine::Narrow(next.object));
                          });
    observations.circumstances.administrator = administrator;
    return observations;
}

}  // namespace

int Record(const RecordOptions& options, std::ostream& errors) {
    const Existing existing = options.force ? Existing::kReplaced : Existing::kKept;
    RequireFree(options.observations, existing);
    if (options.machine) {
        machine::LoadDescription(*options.machine);  // refused here, and not by the asking process
    }
    const recorder::Observations observations = ObserveMachine(options, errors);
    WriteWholeFile(options.observations, recorder::ObservationsText(observations), existing);
    return kExitDone;
}

}  // namespace host
