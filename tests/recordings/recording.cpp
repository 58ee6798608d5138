#include "recordings/recording.h"

#include "cases/case_folder.h"
#include "cases/case_outputs.h"
#include "cases/line_diff.h"
#include "machine/recorder/describe/describe.h"
#include "machine/recorder/describe/replay.h"
#include "machine/recorder/observe/ask.h"
#include "machine/recorder/observe/observe.h"
#include "machine/recorder/prove/proof.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"

#include <fstream>
#include <stdexcept>

namespace recordings {

namespace {

void Silent(std::size_t, const recorder::Question&) {}

// All answers to the call are altered, if `alter` is set.
recorder::Observations ObserveDescribed(const machine::Description& machine, const std::string& call,
                                        const std::function<void(machine::Answer&)>& alter) {
    machine::Session session(machine);
    if (alter) {
        session.simulation().faults().Alter(call, alter);
    }
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    recorder::Observations observations = recorder::Observe(
        [&](const recorder::Question& question) { return recorder::Ask(functions, question); }, Silent);
    const machine::Simulation& simulation = session.simulation();
    if (simulation.open_handles() != 0 || simulation.live_objects() != 0 ||
        simulation.stale_handle_uses() != 0) {
        throw std::runtime_error("the recorder left handles or objects");
    }
    return observations;
}

}  // namespace

std::string TestName(const std::filesystem::path& folder) {
    std::string name = folder.filename().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

Recording Record(const machine::Description& machine) {
    return RecordAltered(machine, "", nullptr);
}

Recording RecordAltered(const machine::Description& machine, const std::string& call,
                        const std::function<void(machine::Answer&)>& alter) {
    Recording recording;
    recording.observations = ObserveDescribed(machine, call, alter);
    recording.text = machine::WriteDescription(recorder::Describe(recording.observations));
    recording.machine = machine::ParseDescription(recording.text, "the recording");
    return recording;
}

std::string Unexplained(const Recording& recording) {
    const auto replayed = recorder::Replay(recording.machine, recording.observations, Silent);
    std::string lines;
    for (const recorder::Finding& finding : recorder::CompareAnswers(recording.observations, replayed)) {
        lines += finding.kind == recorder::Finding::Kind::kUnexplained ? finding.text + '\n' : "";
    }
    return lines;
}

void WriteFolder(const std::filesystem::path& folder, const std::string& description,
                 const std::filesystem::path& selected_from) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::ofstream(folder / cases::kMachineFile, std::ios::binary) << description;
    if (std::filesystem::exists(selected_from / cases::kSelectedFile)) {
        std::filesystem::copy_file(selected_from / cases::kSelectedFile, folder / cases::kSelectedFile);
    }
}

std::vector<std::string> DifferentOutputs(const std::filesystem::path& original,
                                          const std::filesystem::path& recorded) {
    std::vector<std::string> differences;
    for (const std::string& subject : cases::Subjects()) {
        const cases::Output own = cases::MakeOutput(original, subject);
        const cases::Output other = cases::MakeOutput(recorded, subject);
        if (own.file != other.file || own.text != other.text) {
            differences.push_back(own.file + ": " + cases::Difference(own.text, other.text));
        }
    }
    return differences;
}

}  // namespace recordings
