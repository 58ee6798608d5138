#include "documents/plan/page.h"

#include "documents/plan/planned_machine.h"

#include <gmock/gmock.h>

namespace {

using namespace documents;
using namespace planned;
using testing::HasSubstr;
using testing::Not;

TEST(PlanPage, LargerTarget_TellsWhatIsLeftOver) {
    const Machine machine = MachineOf({UsualDisk()});
    EXPECT_THAT(PlanPage(PlanOf(machine, {{}, {{0, {{}, 101 * kMiB, {}}}}})),
                HasSubstr("| Left over on the target | 1048576 bytes (1 MiB) at its end |"));
    EXPECT_THAT(PlanPage(PlanOf(machine, {{}, {{0, {{}, 100 * kMiB, {}}}}})), Not(HasSubstr("Left over")));
}

TEST(PlanPage, SmallerTarget_TellsWhatIsMissing) {
    const Machine machine = MachineOf({UsualDisk()});
    EXPECT_THAT(
        PlanPage(PlanOf(machine, {{}, {{0, {{}, 99 * kMiB, {}}}}})),
        HasSubstr("| Less than the disk | 1048576 bytes (1 MiB) at its end, behind the partitions |"));
    EXPECT_THAT(PlanPage(PlanOf(machine, {{}, {{0, {{}, 100 * kMiB, {}}}}})), Not(HasSubstr("Less than")));
}

TEST(PlanPage, Volume_HasTheEntryThatItBelongsTo) {
    Machine machine = MachineOf({UsualDisk()});
    Add(machine.disks.front(), 20, 9);
    AddVolume(machine, 0, 20, 9);
    AddVolume(machine, 0, 50, 9);
    const std::string page = PlanPage(PlanOf(machine, {}));
    EXPECT_THAT(page, HasSubstr("| Cluster | Entry | Belongs at | Length there |"));
    EXPECT_THAT(page, HasSubstr("| unknown | 2 | 20971520 |"));
    EXPECT_THAT(page, HasSubstr("| unknown | none | 52428800 |"));
}

// The platform's documentation of the types (PARTITION_INFORMATION_GPT, diskpart's "set id") and of the
// attributes: bit 0 is needed by the platform, bit 63 keeps the drive letter away.
TEST(PlanPage, GptEntries_HaveTheNamesAndAttributesOfWindows) {
    struct Row {
        const char* type;
        const char* name_and_attributes;
    };
    constexpr Row kRows[] = {
        {"{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}", "Basic data partition |  |"},
        {"{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}", "EFI system partition | GUID:63 |"},
        {"{E3C9E316-0B5C-4DB8-817D-F92DF00215AE}", "Microsoft reserved partition | GUID:63 |"},
        {"{DE94BBA4-06D1-4D40-A16A-BFD50179D6AC}", "Basic data partition | RequiredPartition GUID:63 |"},
        {"{5808C8AA-7E8F-42E0-85D2-E1E90434CFB3}", "LDM metadata partition |  |"},
        {"{AF9B60A0-1431-4F62-BC68-3311714A69AD}", "LDM data partition |  |"},
        {"{DB97DBA9-0840-4BAE-97F0-FFB9A327C7E1}", "Cluster metadata partition |  |"},
        // Not documented: the name of storage pools. Linux has no name of its own.
        {"{E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D}", " |  |"},
        {"{0FC63DAF-8483-4772-8E79-3D69D8477DE4}", " |  |"},
    };
    for (const Row& row : kRows) {
        Disk disk = EmptyDisk(0, Style::kGpt);
        Add(disk, 1, 9).gpt_type = row.type;
        EXPECT_THAT(PlanPage(PlanOf(MachineOf({disk}), {})),
                    HasSubstr(std::string(" | ") + row.name_and_attributes + "\n"));
    }
}

TEST(PlanPage, Assumptions_AreNamed) {
    Disk mbr = UsualDisk(0);
    mbr.extended = {20 * kMiB, 30 * kMiB};
    Disk gpt = EmptyDisk(1, Style::kGpt);
    Add(gpt, 1, 9);
    const std::string page = PlanPage(PlanOf(MachineOf({mbr, gpt}), {}));
    for (const char* const text : {"Signature unknown", "Empty slots", "Place of the extended partition",
                                   "Type of the extended partition", "Places of the logical records",
                                   "GPT names and attributes", "Entry order"}) {
        EXPECT_THAT(page, HasSubstr(text));
    }
}

TEST(PlanPage, WhatFormat3Tells_IsNotAssumed) {
    Disk disk = UsualDisk();
    disk.partitions->front().slot = 3;
    disk.extended = {20 * kMiB, 30 * kMiB};
    disk.extended_entry = {4, 0x05};
    const std::string page = PlanPage(PlanOf(MachineOf({disk}), {}));
    EXPECT_THAT(page, HasSubstr("| extended (05) |"));
    for (const char* const text :
         {"Empty slots", "Place of the extended partition", "Type of the extended partition"}) {
        EXPECT_THAT(page, Not(HasSubstr(text)));
    }
}

TEST(PlanPage, EntriesWithoutAnId_AreNamed) {
    Disk disk = EmptyDisk(0, Style::kGpt);
    Add(disk, 1, 9);
    Add(disk, 10, 9).id.reset();
    EXPECT_THAT(PlanPage(PlanOf(MachineOf({disk}), {})),
                HasSubstr("Ids of these entries: unknown. The script has none; the tool makes them. 2."));
    disk.partitions->back().id = "{BBBBBBBB-0000-4000-8000-000000000000}";
    EXPECT_THAT(PlanPage(PlanOf(MachineOf({disk}), {})), Not(HasSubstr("Ids of these entries")));
}

TEST(PlanPage, TextsOfTheDocument_AreEscaped) {
    Machine machine = MachineOf({UsualDisk()});
    AddVolume(machine, 0, 1, 9).label = "<b>|`x`*\n\xE2\x80\xAE";
    EXPECT_THAT(PlanPage(PlanOf(machine, {})), HasSubstr("| \\<b\\>\\|\\`x\\`\\*\\\\u000A\\\\u202E |"));
}

}  // namespace
