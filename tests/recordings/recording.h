#pragma once

#include "machine/description/description.h"
#include "machine/recorder/observe/observations.h"
#include "machine/simulation/fault_plan.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// Records described machines in this process.
namespace recordings {

struct Recording {
    recorder::Observations observations;
    std::string text;              // the description as it is written
    machine::Description machine;  // as its reader sees it
};

// The name of a test of a case.
std::string TestName(const std::filesystem::path& folder);

// Observes and describes a machine. No simulation may be current.
Recording Record(const machine::Description& machine);

// Records a machine of which every answer to a call is altered.
Recording RecordAltered(const machine::Description& machine, const std::string& call,
                        const std::function<void(machine::Answer&)>& alter);

// The unexplained findings of the proof, a line each; empty if it is proved.
std::string Unexplained(const Recording& recording);

// Writes a folder of a case: a description with the selected volumes of another case.
void WriteFolder(const std::filesystem::path& folder, const std::string& description,
                 const std::filesystem::path& selected_from);

// How the documents, dumps and verdicts of two folders differ: for each that differs, its file and the first
// differing lines.
std::vector<std::string> DifferentOutputs(const std::filesystem::path& original,
                                          const std::filesystem::path& recorded);

// What may differ on a recording of this machine: nothing, or the document of format 1 if a disk or volume
// refuses only to be opened for writing, which the recorder never tries.
inline testing::Matcher<std::string> OnlyByWriting(const machine::Description& machine) {
    const auto refuses = [](const auto& object) { return object.open_for_writing_error != 0; };
    const bool any = std::any_of(machine.disks.begin(), machine.disks.end(), refuses) ||
                     std::any_of(machine.volumes.begin(), machine.volumes.end(), refuses);
    return any ? testing::Matcher<std::string>(testing::StartsWith("format1"))
               : testing::Matcher<std::string>(testing::Not(testing::An<std::string>()));
}

}  // namespace recordings
