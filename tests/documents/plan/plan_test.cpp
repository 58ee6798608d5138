#include "documents/plan/plan.h"

#include "documents/plan/obstacles.h"
#include "documents/plan/page.h"
#include "documents/plan/planned_machine.h"

#include <gmock/gmock.h>

#include <fstream>

namespace {

using namespace documents;
using namespace planned;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> Lines(const std::vector<Finding>& findings) {
    std::vector<std::string> lines;
    for (const Finding& finding : findings) {
        lines.push_back(std::string(finding.code) + " " + std::string(NameOf(finding.severity)) + " " +
                        finding.place);
    }
    return lines;
}

std::vector<std::string> Losses(const Machine& machine) {
    return Lines(PlanOf(machine, {}).losses);
}

std::vector<std::string> Names(const Plan& plan) {
    std::vector<std::string> names;
    for (const PlanFile& file : plan.files) {
        names.push_back(file.name);
    }
    return names;
}

std::string PageIn(const Plan& plan) {
    return plan.files.empty() ? "" : plan.files.back().text;
}

Disk UsualDisk(std::uint32_t number = 0) {
    Disk disk = EmptyDisk(number, Style::kMbr);
    Add(disk, 1, 9);
    return disk;
}

TEST(Plan, WholeTable_HasAScriptAndNoLoss) {
    Machine machine = MachineOf({UsualDisk()});
    AddVolume(machine, 0, 1, 9);
    const Plan plan = PlanOf(machine, {});
    EXPECT_THAT(Names(plan), ElementsAre("disk0.sfdisk", "plan.md"));
    EXPECT_THAT(plan.losses, IsEmpty());
}

TEST(Plan, ChosenDisks_AreAll) {
    const Machine machine = MachineOf({UsualDisk(0), UsualDisk(1), UsualDisk(2)});
    EXPECT_THAT(Names(PlanOf(machine, {{2, 0}, {}})), ElementsAre("disk0.sfdisk", "disk2.sfdisk", "plan.md"));
    EXPECT_THROW(PlanOf(machine, {{7}, {}}), TargetError);
    EXPECT_THROW(PlanOf(machine, {{}, {{7, {}}}}), TargetError);
    EXPECT_THROW(PlanOf(machine, {{0}, {{1, {}}}}), TargetError);
}

TEST(PlanLosses, DiskThatCouldNotBeRead_HasNoScript) {
    Disk disk;
    disk.number = 4;
    Machine machine = MachineOf({disk});
    EXPECT_THAT(Losses(machine), ElementsAre("P001 note disk 4"));
    AddVolume(machine, 4, 1, 9);
    EXPECT_THAT(Losses(machine), ElementsAre("P001 error disk 4"));
    EXPECT_THAT(Names(PlanOf(machine, {})), ElementsAre("plan.md"));
}

TEST(PlanLosses, PlaceholderUnderAVolume_IsALoss) {
    Machine machine = MachineOf({});
    machine.format = Format::kOne;
    machine.placeholders = {0, 1};
    AddVolume(machine, 1, 1, 9);
    EXPECT_THAT(Losses(machine), ElementsAre("P002 error disk 1"));
}

TEST(PlanLosses, GptDiskOfFormat3_HasNoScript) {
    Disk disk = EmptyDisk(0, Style::kGpt);
    disk.partitions.reset();
    disk.gaps.reset();
    Machine machine = MachineOf({disk});
    AddVolume(machine, 0, 1, 9);
    EXPECT_THAT(Losses(machine), ElementsAre("P003 error disk 0"));
}

TEST(PlanLosses, DiskWithoutATable_HasNoScript) {
    Disk blank = EmptyDisk(1, Style::kMbr);
    blank.gaps = {{{0, *blank.size}, false}};
    EXPECT_THAT(Losses(MachineOf({EmptyDisk(0, Style::kRaw), blank})),
                ElementsAre("P004 note disk 0", "P004 note disk 1"));
}

TEST(PlanLosses, EmptyTable_HasAScript) {
    EXPECT_THAT(Names(PlanOf(MachineOf({EmptyDisk(0, Style::kMbr)}), {})),
                ElementsAre("disk0.sfdisk", "plan.md"));
}

TEST(PlanLosses, ContradictoryTable_HasNoScript) {
    Disk overlapping = UsualDisk(0);
    Add(overlapping, 5, 9);
    Disk odd = UsualDisk(1);
    odd.partitions->front().place.start += 100;
    Disk beyond = UsualDisk(11);
    Add(beyond, 99, 2);
    EXPECT_THAT(Losses(MachineOf({overlapping, odd, beyond, UsualDisk(12)})),
                ElementsAre("P005 note disk 0", "P005 note disk 1", "P005 note disk 11"));
}

TEST(PlanLosses, PartitionWhereTheTableIs_HasNoScript) {
    Disk super_floppy = EmptyDisk(0, Style::kMbr);
    Add(super_floppy, 0, 100);
    Disk backup_table = EmptyDisk(1, Style::kGpt);
    Add(backup_table, 1, 99);
    Disk fits = EmptyDisk(2, Style::kGpt);
    Add(fits, 1, 98).id = "{BBBBBBBB-0000-4000-8000-000000000000}";
    EXPECT_THAT(Losses(MachineOf({super_floppy, backup_table, fits})),
                ElementsAre("P006 note disk 0", "P006 note disk 1"));
}

TEST(PlanLosses, PartitionBehind32Bits_CannotBeInAnMbr) {
    Disk disk = EmptyDisk(0, Style::kMbr, 4096 * 1024 * kMiB);
    Add(disk, 2048 * 1024, 1);
    EXPECT_THAT(Losses(MachineOf({disk})), ElementsAre("P006 note disk 0"));
}

TEST(PlanLosses, DynamicDisk_HasAScriptAndALossForEachExtent) {
    Disk disk = UsualDisk();
    disk.partitions->front().mbr_type = 0x42;
    Machine machine = MachineOf({disk});
    AddVolume(machine, 0, 2, 5).dynamic = true;
    const Plan plan = PlanOf(machine, {});
    EXPECT_THAT(Lines(plan.losses), ElementsAre("P007 note disk 0", "P007 note volume \\\\?\\Volume{0}\\"));
    EXPECT_THAT(Names(plan), ElementsAre("disk0.sfdisk", "plan.md"));
}

TEST(PlanLosses, VolumeInNoPartition_IsALoss) {
    Machine machine = MachineOf({UsualDisk()});
    AddVolume(machine, 0, 50, 5);
    EXPECT_THAT(Losses(machine), ElementsAre("P008 error volume \\\\?\\Volume{0}\\"));
}

std::vector<std::string> Refusals(const Machine& machine, const TargetRequest& target) {
    const Plan plan = PlanOf(machine, {{}, {{0, target}}});
    EXPECT_TRUE(plan.refusals.empty() || plan.files.empty());
    return Lines(plan.refusals);
}

TEST(PlanTargets, SizeAndSectors_AreCompared) {
    const Machine machine = MachineOf({UsualDisk()});
    EXPECT_THAT(Refusals(machine, {{}, 10 * kMiB, 512}), IsEmpty());
    EXPECT_THAT(Refusals(machine, {{}, 10 * kMiB - 1, {}}), ElementsAre("P020 error disk 0"));
    EXPECT_THAT(Refusals(machine, {{}, 10 * kMiB, 4096}), ElementsAre("P021 error disk 0"));
}

TEST(PlanTargets, MissingTarget_CannotBeLookedAt) {
    EXPECT_THROW(PlanOf(MachineOf({UsualDisk()}), {{}, {{0, {ORVANE_BINARY_DIR "/no such target", {}, {}}}}}),
                 TargetError);
    EXPECT_THROW(PlanOf(MachineOf({UsualDisk()}), {{}, {{0, {ORVANE_BINARY_DIR, {}, {}}}}}), TargetError);
}

TEST(PlanTargets, LargerTarget_HasSomethingLeftOver) {
    const Machine machine = MachineOf({UsualDisk()});
    EXPECT_THAT(PageIn(PlanOf(machine, {{}, {{0, {{}, 101 * kMiB, {}}}}})),
                HasSubstr("| Left over on the target | 1048576 bytes (1 MiB) at its end |"));
    EXPECT_THAT(PageIn(PlanOf(machine, {{}, {{0, {{}, 100 * kMiB, {}}}}})), Not(HasSubstr("Left over")));
}

TEST(PlanPage, Assumptions_AreNamed) {
    Disk mbr = UsualDisk(0);
    mbr.extended = {20 * kMiB, 30 * kMiB};
    Disk gpt = EmptyDisk(1, Style::kGpt);
    Add(gpt, 1, 9);
    const std::string page = PageIn(PlanOf(MachineOf({mbr, gpt}), {}));
    for (const char* const text : {"Signature unknown", "Empty slots", "Place of the extended partition",
                                   "Type of the extended partition", "Places of the logical records",
                                   "GPT names and attributes", "Entry order"}) {
        EXPECT_THAT(page, HasSubstr(text));
    }
}

TEST(PlanPage, TextsOfTheDocument_AreEscaped) {
    Machine machine = MachineOf({UsualDisk()});
    AddVolume(machine, 0, 1, 9).label = "<b>|`x`*\n\xE2\x80\xAE";
    EXPECT_THAT(PageIn(PlanOf(machine, {})), HasSubstr("| \\<b\\>\\|\\`x\\`\\*\\\\u000A\\\\u202E |"));
}

// The rows "| P001 | title |" of the page.
TEST(PlanCodes, Page_HasTheSameTable) {
    std::ifstream page(ORVANE_SOURCE_DIR "/docs/reasons.md");
    std::vector<std::string> rows;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("| P")) {
            rows.push_back(line.substr(0, line.find('|', line.find('|', 2) + 1) + 1));
        }
    }
    std::vector<std::string> codes;
    for (const FindingCode& code : PlanCodes()) {
        codes.push_back("| " + std::string(code.code) + " | " + std::string(code.title) + " |");
    }
    EXPECT_EQ(rows, codes);
}

}  // namespace
