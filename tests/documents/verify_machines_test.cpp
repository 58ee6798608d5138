#include "documents/case_documents.h"
#include "documents/finding_lines.h"
#include "documents/verify/verify.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using case_documents::Read;
using case_documents::TextOf;
using finding_lines::Added;
using finding_lines::Lines;

documents::Volume& Drive(documents::Machine& machine, char letter) {
    const auto found = std::find_if(
        machine.volumes.begin(), machine.volumes.end(),
        [&](const documents::Volume& volume) { return volume.letter == std::string{letter} + ":\\"; });
    if (found == machine.volumes.end()) {
        throw std::runtime_error("the machine has no such drive");
    }
    return *found;
}

// What no change of one text makes.
struct MachineChange {
    int format;
    void (*change)(documents::Machine& machine);
    std::vector<std::string> added;
};

// Of the laptop. The row of D:\ in the table of drive letters is 2.
const MachineChange kMachineChanges[] = {
    {3, [](documents::Machine& machine) { Drive(machine, 'D').extents.reset(); }, {"D030 error volume D:\\"}},
    {3,
     [](documents::Machine& machine) { Drive(machine, 'D').extents->clear(); },
     {"D030 error volume D:\\"}},
    {3,
     [](documents::Machine& machine) {
         Drive(machine, 'D').extents.reset();
         Drive(machine, 'D').size.reset();
         Drive(machine, 'D').file_system.reset();
     },
     {"D030 note volume D:\\"}},
    {2,
     [](documents::Machine& machine) { Drive(machine, 'D').path = Drive(machine, 'C').path; },
     {"D035 error volume D:\\"}},
    // The table of drive letters still has the m_GUID that the volume had.
    {2,
     [](documents::Machine& machine) { Drive(machine, 'D').reference = Drive(machine, 'C').reference; },
     {"D006 error DriveLetterTable/Drive2", "D036 error volume D:\\"}},
    {2, [](documents::Machine& machine) { Drive(machine, 'D').dynamic = true; }, {"D038 note volume D:\\"}},
    {2,
     [](documents::Machine& machine) { Drive(machine, 'D').file_system.reset(); },
     {"D039 note volume D:\\"}},
};

TEST(Verify, EachChangeOfAMachine_IsToldAndNothingElse) {
    for (const MachineChange& change : kMachineChanges) {
        documents::Machine machine = Read(TextOf("bios-laptop", change.format));
        const std::multiset<std::string> before = Lines(documents::Verify(machine));
        change.change(machine);
        EXPECT_EQ(Added(before, Lines(documents::Verify(machine))),
                  std::multiset<std::string>(change.added.begin(), change.added.end()))
            << testing::PrintToString(change.added);
    }
}

TEST(Verify, PlaceholderWithAVolume_IsAnError) {
    documents::Machine machine;
    machine.format = documents::Format::kOne;
    machine.placeholders = {1, 4};
    documents::Volume& volume = machine.volumes.emplace_back();
    volume.extents.emplace().emplace_back().disk = 4;
    EXPECT_THAT(Lines(documents::Verify(machine)),
                testing::IsSupersetOf({"D012 error disk 4", "D012 note DiskDrives"}));
}

}  // namespace
