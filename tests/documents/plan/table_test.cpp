#include "documents/plan/table.h"

#include "documents/plan/planned_machine.h"
#include "documents/plan/script.h"

#include <gmock/gmock.h>

namespace {

using namespace documents;
using namespace planned;
using testing::ElementsAre;
using testing::HasSubstr;

// "2 from 10" for each entry, in MiB; "x" marks the extended partition.
std::vector<std::string> Entries(const Disk& disk) {
    std::vector<std::string> lines;
    for (const TableEntry& entry : TableOf(disk).entries) {
        lines.push_back(std::to_string(entry.number) + (entry.partition == nullptr ? "x" : "") + " from " +
                        std::to_string(entry.place.start / kMiB));
    }
    return lines;
}

TEST(PlanTable, Mbr_TakesTheFirstSlotsInTheOrderOfTheDocument) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 50, 10);
    Add(disk, 1, 10);
    EXPECT_THAT(Entries(disk), ElementsAre("1 from 50", "2 from 1"));
}

TEST(PlanTable, Extended_HasItsSlotAndLogicalsBeginAtFive) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 1, 9);
    Add(disk, 40, 5, PartitionKind::kLogical);
    Add(disk, 21, 5, PartitionKind::kLogical);
    Add(disk, 60, 10);
    disk.extended = {20 * kMiB, 30 * kMiB};
    disk.primaries_before_extended = 1;
    EXPECT_THAT(Entries(disk), ElementsAre("1 from 1", "2x from 20", "3 from 60", "5 from 40", "6 from 21"));
    EXPECT_FALSE(TableOf(disk).guessed_extended);
}

// Format 3 has all four slots.
TEST(PlanTable, SlotsThatTheDocumentTells_AreKept) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 50, 10).slot = 4;
    Add(disk, 1, 10).slot = 1;
    Add(disk, 21, 5, PartitionKind::kLogical);
    disk.extended = {20 * kMiB, 30 * kMiB};
    disk.extended_entry = {3, 0x05};
    EXPECT_THAT(Entries(disk), ElementsAre("1 from 1", "3x from 20", "4 from 50", "5 from 21"));
    EXPECT_THAT(ScriptOf(MachineOf({disk}), disk, TableOf(disk), {}),
                HasSubstr("disk0p3 : start=40960, size=61440, type=5\n"));
    disk.partitions->front().slot.reset();
    EXPECT_THAT(Entries(disk), ElementsAre("1x from 20", "2 from 50", "3 from 1", "5 from 21"));
}

TEST(PlanTable, ExtendedWithoutLogicals_IsThere) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 1, 9);
    disk.extended = {20 * kMiB, 30 * kMiB};
    EXPECT_THAT(Entries(disk), ElementsAre("1x from 20", "2 from 1"));
}

// sfdisk 2.38 says "No free sectors available" to a logical partition that ends less than 1 MiB before one
// that it has.
TEST(PlanTable, LogicalsThatTheToolsCannotMakeInOrder_AreSorted) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 40, 5, PartitionKind::kLogical);
    Add(disk, 30, 9, PartitionKind::kLogical);
    EXPECT_THAT(Entries(disk), ElementsAre("1x from 0", "5 from 40", "6 from 30"));
    EXPECT_FALSE(TableOf(disk).sorted_logicals);
    disk.partitions->back().place.length += 512;
    EXPECT_THAT(Entries(disk), ElementsAre("1x from 0", "5 from 30", "6 from 40"));
    EXPECT_TRUE(TableOf(disk).sorted_logicals);
}

TEST(PlanTable, ExtendedOfUnknownPlace_IsAroundTheLogicals) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 1, 9);
    Add(disk, 21, 5, PartitionKind::kLogical);
    Add(disk, 30, 7, PartitionKind::kLogical);
    const Table table = TableOf(disk);
    EXPECT_TRUE(table.guessed_extended);
    EXPECT_EQ(table.entries[1].place, (Range{10 * kMiB, 27 * kMiB}));
}

TEST(PlanTable, Gpt_NumbersThatVolumesTellComeFirst) {
    Disk disk = EmptyDisk(0, Style::kGpt);
    Add(disk, 1, 9);
    Add(disk, 20, 9).system_number = 1;
    Add(disk, 30, 9);
    Add(disk, 40, 9).system_number = 3;
    EXPECT_THAT(Entries(disk), ElementsAre("1 from 20", "2 from 1", "3 from 40", "4 from 30"));
    EXPECT_EQ(TableOf(disk).told_numbers, 2U);
}

// A GPT of 128 entries takes 2 + 32 sectors of 512 bytes at the beginning and 33 at the end, 2 + 4 and 5 of
// 4096.
TEST(PlanTable, GptReserve_IsThatOf128Entries) {
    const Table table;
    EXPECT_EQ(ReserveOf(table, 512).first, 34U);
    EXPECT_EQ(ReserveOf(table, 512).behind, 33U);
    EXPECT_EQ(ReserveOf(table, 4096).first, 6U);
    EXPECT_EQ(ReserveOf(table, 4096).behind, 5U);
}

TEST(PlanTable, NeededSize_IsTheEndOfThePartitionsAndTheSecondGptTable) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 1, 9);
    EXPECT_EQ(NeededSize(disk, TableOf(disk)), 10 * kMiB);
    disk = EmptyDisk(0, Style::kGpt);
    Add(disk, 1, 9);
    EXPECT_EQ(NeededSize(disk, TableOf(disk)), 10 * kMiB + 33 * 512);
}

// As sfdisk(8) describes its script files.
TEST(PlanScript, Mbr_IsADumpWithComments) {
    Disk disk = EmptyDisk(3, Style::kMbr);
    disk.signature = 0x1BADCAFE;
    disk.interface_type = "USB\nlabel: gpt";
    Add(disk, 1, 9).active = true;
    const std::string script = ScriptOf(MachineOf({disk}), disk, TableOf(disk), {});
    EXPECT_THAT(script, HasSubstr("\nlabel: dos\nlabel-id: 0x1badcafe\nunit: sectors\nsector-size: 512\n\n"
                                  "disk3p1 : start=2048, size=18432, type=7, bootable\n"));
    EXPECT_THAT(
        script,
        HasSubstr(
            "# Disk: number 3, size 104857600 bytes, id 0x1BADCAFE, interface USB\\u000Alabel: gpt.\n"));
    EXPECT_THAT(script, HasSubstr("# Target: none is chosen.\n"));
}

TEST(PlanScript, SignatureUnknown_IsNotWritten) {
    Disk disk = EmptyDisk(0, Style::kMbr);
    Add(disk, 1, 9);
    EXPECT_THAT(ScriptOf(MachineOf({disk}), disk, TableOf(disk), {}), Not(HasSubstr("label-id")));
}

// The attributes of a Windows recovery partition: platform required, no drive letter.
TEST(PlanScript, Gpt_HasTheNamesAndAttributesOfWindows) {
    Disk disk = EmptyDisk(0, Style::kGpt);
    disk.id = "{0F1E2D3C-4B5A-4978-8796-A5B4C3D2E1F0}";
    Add(disk, 1, 9).gpt_type = "{DE94BBA4-06D1-4D40-A16A-BFD50179D6AC}";
    Add(disk, 10, 9).gpt_type = "{0FC63DAF-8483-4772-8E79-3D69D8477DE4}";
    const std::string script = ScriptOf(MachineOf({disk}), disk, TableOf(disk), {});
    EXPECT_THAT(script, HasSubstr("label-id: 0F1E2D3C-4B5A-4978-8796-A5B4C3D2E1F0\n"));
    EXPECT_THAT(script, HasSubstr("first-lba: 34\ntable-length: 128\n"));
    EXPECT_THAT(script,
                HasSubstr("disk0p1 : start=2048, size=18432, type=DE94BBA4-06D1-4D40-A16A-BFD50179D6AC, "
                          "uuid=AAAAAAAA-0000-4000-8000-000000000000, name=\"Basic data partition\", "
                          "attrs=\"RequiredPartition GUID:63\"\n"));
    EXPECT_THAT(
        script,
        HasSubstr("type=0FC63DAF-8483-4772-8E79-3D69D8477DE4, uuid=AAAAAAAA-0000-4000-8000-000000000001\n"));
}

}  // namespace
