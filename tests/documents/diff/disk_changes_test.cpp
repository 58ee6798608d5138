#include "documents/diff/machines.h"

#include <gtest/gtest.h>

#include <utility>

namespace documents::diff {

namespace {

void Renumber(Machine& machine, std::uint32_t from, std::uint32_t to) {
    for (Disk& disk : machine.disks) {
        if (disk.number == from) {
            disk.number = to;
        }
    }
    for (Volume& volume : machine.volumes) {
        for (Extent& extent : *volume.extents) {
            if (extent.disk == from) {
                extent.disk = to;
            }
        }
    }
}

void Swap(Machine& machine) {
    Renumber(machine, 0, 7);
    Renumber(machine, 1, 0);
    Renumber(machine, 7, 1);
    std::swap(machine.disks[0], machine.disks[1]);
}

Disk BlankDisk(std::uint32_t number, std::uint64_t size) {
    Disk disk;
    disk.number = number;
    disk.size = size;
    disk.sector_size = 512U;
    disk.style = Style::kRaw;
    disk.partitions.emplace();
    return disk;
}

void Convert(Disk& disk, const char* id) {
    disk.style = Style::kGpt;
    disk.signature.reset();
    disk.id = id;
    for (Partition& partition : *disk.partitions) {
        partition.mbr_type.reset();
        partition.active.reset();
        partition.gpt_type = kBasicData;
        partition.id = "{NEW-" + std::to_string(partition.place.start) + '}';
    }
}

const std::vector<Story> kStories = {
    {"nothing", [](Machine&) {}, {}},
    {"renumbered", [](Machine& machine) { Renumber(machine, 1, 4); }, {"disk renumbered {DISK-1}"}},
    {"swapped", Swap, {"disk renumbered 0x00000A00", "disk renumbered {DISK-1}"}},
    {"resized", [](Machine& machine) { machine.disks[1].size = 300 * kGiB; }, {"disk resized {DISK-1}"}},
    {"renumbered and resized",
     [](Machine& machine) {
         Renumber(machine, 1, 4);
         machine.disks[1].size = 300 * kGiB;
     },
     {"disk renumbered {DISK-1}", "disk resized {DISK-1}"}},
    {"a blank one added",
     [](Machine& machine) { machine.disks.push_back(BlankDisk(2, kGiB)); },
     {"disk added disk 2"}},
    {"removed with its volumes",
     [](Machine& machine) {
         machine.disks.pop_back();
         machine.volumes.resize(2);
     },
     {"disk removed {DISK-1}", "volume removed \\\\?\\Volume{d}\\", "volume removed \\\\?\\Volume{e}\\"}},
    // Its volumes were restored from a backup: the same serial numbers at the same offsets of another disk.
    {"replaced by a larger one",
     [](Machine& machine) {
         machine.disks[1].size = 300 * kGiB;
         machine.disks[1].id = "{DISK-9}";
         machine.disks[1].partitions->front().id = "{PART-Y}";
         machine.disks[1].partitions->back().id = "{PART-Z}";
     },
     {"disk replaced {DISK-1}", "volume moved \\\\?\\Volume{d}\\", "volume moved \\\\?\\Volume{e}\\"}},
    {"another identifier, and the same volumes",
     [](Machine& machine) { machine.disks[1].id = "{DISK-9}"; },
     {"disk changed {DISK-1} (guess)"}},
    {"another signature, and the same volumes under other paths",
     [](Machine& machine) {
         machine.disks[0].signature = 0xB00U;
         machine.volumes[0].path = "\\\\?\\Volume{x}\\";
     },
     {"disk changed 0x00000A00 (guess)", "volume changed \\\\?\\Volume{boot}\\"}},
    {"converted to GPT, with a partition that was logical",
     [](Machine& machine) {
         Convert(machine.disks[0], "{DISK-0}");
         machine.disks[0].partitions->back().kind = PartitionKind::kLogical;
     },
     {"disk converted 0x00000A00 (guess)"}},
    // Nothing but size and number tells that it is the same disk.
    {"emptied and converted",
     [](Machine& machine) {
         Convert(machine.disks[0], "{DISK-0}");
         machine.disks[0].partitions->clear();
         machine.volumes.erase(machine.volumes.begin(), machine.volumes.begin() + 2);
     },
     {"disk converted 0x00000A00 (guess)", "partition removed 0x00000A00@1048576 (guess)",
      "partition removed 0x00000A00@525336576 (guess)", "volume removed \\\\?\\Volume{boot}\\",
      "volume removed \\\\?\\Volume{c}\\"}},
    // One dynamic partition covers the disk instead of those that were there.
    {"dynamic",
     [](Machine& machine) {
         std::vector<Partition>& partitions = *machine.disks[0].partitions;
         partitions.pop_back();
         partitions[0].place = {32256, 99 * kGiB};
         partitions[0].mbr_type = std::uint8_t{0x42};
         partitions[0].active = false;
         machine.volumes[0].dynamic = true;
         machine.volumes[1].dynamic = true;
     },
     {"disk dynamic 0x00000A00"}},
    {"another interface",
     [](Machine& machine) { machine.disks[1].interface_type = "USB"; },
     {"disk changed {DISK-1}"}},
    {"another sector size",
     [](Machine& machine) { machine.disks[1].sector_size = 4096U; },
     {"disk changed {DISK-1}"}},
    {"no longer readable",
     [](Machine& machine) {
         Disk& disk = machine.disks[1];
         disk.size.reset();
         disk.style.reset();
         disk.id.reset();
         disk.partitions.reset();
         disk.sector_size.reset();
     },
     {"disk changed {DISK-1} (guess)"}},
};

TEST(DiskChanges, Story_IsToldAndNothingElse) {
    for (const Story& story : kStories) {
        ExpectStory(story, TwoDisks());
    }
}

// In format 3 a GPT disk has no identifier.
TEST(DiskChanges, RenumberedInFormat3_IsRecognisedByItsVolumes) {
    ExpectStory(
        {"renumbered", [](Machine& machine) { Renumber(machine, 1, 4); }, {"disk renumbered disk 1 (guess)"}},
        TwoDisksInFormat3());
    ExpectStory({"swapped", Swap, {"disk renumbered 0x00000A00", "disk renumbered disk 1 (guess)"}},
                TwoDisksInFormat3());
    ExpectStory({"resized",
                 [](Machine& machine) { machine.disks[1].size = 300 * kGiB; },
                 {"disk resized disk 1 (guess)"}},
                TwoDisksInFormat3());
}

TEST(DiskChanges, BlankDisks_AreRecognisedBySizeAndNumberFirst) {
    Machine before = TwoDisks();
    before.disks.push_back(BlankDisk(2, kGiB));
    before.disks.push_back(BlankDisk(3, kGiB));
    Machine after = TwoDisks();
    after.disks.push_back(BlankDisk(3, kGiB));
    after.disks.push_back(BlankDisk(5, kGiB));
    // Disk 3 is disk 3, so disk 5 must be what disk 2 was.
    EXPECT_EQ(Tell(before, after), Told({"disk renumbered disk 2 (guess)"}));
}

TEST(DiskChanges, BlankDiskOfAnotherSize_IsAnotherDisk) {
    Machine before = TwoDisks();
    before.disks.push_back(BlankDisk(2, kGiB));
    Machine after = TwoDisks();
    after.disks.push_back(BlankDisk(3, 2 * kGiB));
    EXPECT_EQ(Tell(before, after), Told({"disk removed disk 2", "disk added disk 3"}));
}

TEST(DiskChanges, BlankDiskGetsATable_IsConverted) {
    Machine before = TwoDisks();
    before.disks.push_back(BlankDisk(2, kGiB));
    Machine after = before;
    after.disks[2].style = Style::kGpt;
    after.disks[2].id = "{DISK-2}";
    EXPECT_EQ(Tell(before, after), Told({"disk converted disk 2 (guess)"}));
}

// Two disks of a mirror that was broken up, for example.
TEST(DiskChanges, TwoDisksWithOneSignature_AreKnownByTheirNumbers) {
    Machine before = TwoDisks();
    Disk copy = before.disks[0];
    copy.number = 2;
    copy.interface_type = "USB";
    before.disks.push_back(copy);
    EXPECT_EQ(Tell(before, before), Told());
    Machine after = before;
    after.disks[2].number = 3;
    EXPECT_EQ(Tell(before, after), Told({"disk renumbered 0x00000A00"}));
}

TEST(DiskChanges, Geometry_CountsWithAllOnly) {
    const Machine before = TwoDisksInFormat3();
    Machine after = before;
    after.disks[0].geometry->tracks_per_cylinder = 240;
    EXPECT_EQ(Tell(before, after), Told());
    EXPECT_EQ(Tell(before, after, true), Told({"disk changed 0x00000A00"}));
}

// It is gone then, which is not told.
TEST(DiskChanges, ConvertedWithAnExtendedPartition_IsOnlyConverted) {
    Machine before = TwoDisksInFormat3();
    before.disks[0].extended = Range{90 * kGiB, 5 * kGiB};
    Machine after = TwoDisksInFormat3();
    after.disks[0].style = Style::kGpt;
    after.disks[0].signature.reset();
    after.disks[0].partitions.reset();
    EXPECT_EQ(Tell(before, after), Told({"disk converted 0x00000A00 (guess)"}));
}

TEST(DiskChanges, ExtendedPartition_IsComparedInFormat3) {
    Machine before = TwoDisksInFormat3();
    before.disks[0].extended = Range{90 * kGiB, 5 * kGiB};
    Machine after = before;
    after.disks[0].extended->length = 6 * kGiB;
    EXPECT_EQ(Tell(before, after), Told({"disk changed 0x00000A00"}));
    after.disks[0].extended.reset();
    EXPECT_EQ(Tell(before, after), Told({"disk changed 0x00000A00"}));
}

}  // namespace

}  // namespace documents::diff
