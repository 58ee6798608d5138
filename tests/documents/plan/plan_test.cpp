#include "documents/plan/plan.h"

#include "documents/plan/obstacles.h"
#include "documents/plan/planned_machine.h"

#include <gmock/gmock.h>

#include <fstream>

namespace {

using namespace documents;
using namespace planned;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
    EXPECT_THAT(Losses(machine), ElementsAre("P002 error disk 1", "P002 note DiskDrives"));
}

// Format 1 has a row for every number, and leaves out the facts of GPT disks.
TEST(PlanLosses, PlaceholdersOfFormat1_MayBeDisks) {
    Machine machine = MachineOf({UsualDisk()});
    machine.format = Format::kOne;
    machine.placeholders = {1, 3, 4, 5};
    const Plan plan = PlanOf(machine, {});
    ASSERT_THAT(Lines(plan.losses), ElementsAre("P002 note DiskDrives"));
    EXPECT_THAT(plan.losses.front().text, HasSubstr("1, 3 to 5."));
    EXPECT_THAT(Lines(PlanOf(machine, {{0}, {}}).losses), IsEmpty());
}

TEST(PlanLosses, ChosenPlaceholder_IsAnswered) {
    Machine machine = MachineOf({UsualDisk()});
    machine.format = Format::kOne;
    machine.placeholders = {1, 3};
    const Plan plan = PlanOf(machine, {{3}, {}});
    EXPECT_THAT(Names(plan), ElementsAre("plan.md"));
    ASSERT_THAT(Lines(plan.losses), ElementsAre("P002 note DiskDrives"));
    EXPECT_THAT(plan.losses.front().text, HasSubstr("unknown: 3."));
    EXPECT_THROW(PlanOf(machine, {{}, {{3, {}}}}), TargetError);
    machine.format = Format::kTwo;  // there is no such disk
    EXPECT_THROW(PlanOf(machine, {{3}, {}}), TargetError);
}

TEST(PlanLosses, VolumeOnADiskThatIsNotThere_IsALoss) {
    Machine machine = MachineOf({UsualDisk()});
    machine.format = Format::kThree;
    AddVolume(machine, 2, 1, 9);
    EXPECT_THAT(Losses(machine), ElementsAre("P002 error disk 2"));
}

TEST(PlanLosses, VolumeOfUnknownPlace_IsALoss) {
    Machine machine = MachineOf({UsualDisk()});
    machine.format = Format::kThree;
    AddVolume(machine, 0, 1, 9).extents.reset();
    Volume optical;
    optical.device = "\\Device\\CdRom0";
    machine.volumes.push_back(optical);
    EXPECT_THAT(Losses(machine), ElementsAre("P011 error volume \\\\?\\Volume{0}\\"));
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

// Format 2 has one row for all of a GPT disk without partitions.
TEST(PlanLosses, EmptyTable_HasAScript) {
    Disk gpt = EmptyDisk(1, Style::kGpt);
    gpt.gaps = {{{0, *gpt.size}, false}};
    const Plan plan = PlanOf(MachineOf({EmptyDisk(0, Style::kMbr), gpt}), {});
    EXPECT_THAT(Names(plan), ElementsAre("disk0.sfdisk", "disk1.sfdisk", "plan.md"));
    EXPECT_THAT(plan.losses, IsEmpty());
}

TEST(PlanLosses, DiskOfUnknownStyle_HasNoScript) {
    Disk disk = EmptyDisk(0, Style::kRaw);
    disk.style.reset();
    EXPECT_THAT(Losses(MachineOf({disk})), ElementsAre("P004 note disk 0"));
}

TEST(PlanLosses, PartitionWithoutAType_HasNoScript) {
    Disk mbr = UsualDisk(0);
    mbr.partitions->front().mbr_type = 0;
    Disk gpt = EmptyDisk(1, Style::kGpt);
    Add(gpt, 1, 9).gpt_type.reset();
    gpt.partitions->front().mbr_type = 7;
    EXPECT_THAT(Losses(MachineOf({mbr, gpt})), ElementsAre("P009 note disk 0", "P009 note disk 1"));
}

TEST(PlanLosses, SameIdsOnOneDisk_AreALoss) {
    Disk disk = EmptyDisk(0, Style::kGpt);
    Add(disk, 1, 9);
    Add(disk, 10, 9);
    Add(disk, 20, 9);
    disk.partitions->back().id = disk.partitions->front().id;
    const Plan plan = PlanOf(MachineOf({disk}), {});
    EXPECT_THAT(Lines(plan.losses), ElementsAre("P010 error disk 0, partition at 20971520"));
    EXPECT_THAT(plan.losses.front().text, HasSubstr("the partition at 1048576"));
    EXPECT_THAT(Names(plan), ElementsAre("disk0.sfdisk", "plan.md"));
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

TEST(PlanLosses, DynamicDiskWithoutAScript_DoesNotPromiseItsTable) {
    Disk disk = UsualDisk();
    disk.partitions->front().mbr_type = 0x42;
    EXPECT_THAT(PlanOf(MachineOf({disk}), {}).losses.back().text, HasSubstr("its table is made"));
    Add(disk, 5, 9);
    const Plan plan = PlanOf(MachineOf({disk}), {});
    EXPECT_THAT(Lines(plan.losses), ElementsAre("P005 note disk 0", "P007 note disk 0"));
    EXPECT_THAT(plan.losses.back().text, HasSubstr("neither its table nor"));
}

TEST(PlanLosses, VolumeInNoPartition_IsALoss) {
    Machine machine = MachineOf({UsualDisk()});
    AddVolume(machine, 0, 50, 5);
    EXPECT_THAT(Losses(machine), ElementsAre("P008 error volume \\\\?\\Volume{0}\\"));
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
