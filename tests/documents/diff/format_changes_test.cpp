#include "documents/diff/machines.h"

#include <gtest/gtest.h>

namespace documents::diff {

namespace {

// Format 1: MBR disks and the volumes on them.
Machine TwoDisksInFormat1() {
    Machine machine = TwoDisks();
    machine.format = Format::kOne;
    machine.disks.pop_back();
    machine.placeholders = {1};
    machine.volumes.resize(2);
    return machine;
}

TEST(FormatChanges, OneMachineInAllFormats_IsTheSame) {
    const Machine machines[] = {TwoDisksInFormat1(), TwoDisks(), TwoDisksInFormat3()};
    for (const Machine& before : machines) {
        for (const Machine& after : machines) {
            SCOPED_TRACE(static_cast<int>(before.format));
            SCOPED_TRACE(static_cast<int>(after.format));
            EXPECT_EQ(Tell(before, after, true), Told());
        }
    }
}

TEST(FormatChanges, WhatBothSay_IsCompared) {
    Machine after = TwoDisksInFormat3();
    after.volumes[2].label = "Other";
    after.volumes[3].letter = "F:\\";
    after.volumes[3].mount_points = {"F:\\"};
    after.disks[1].size = 300 * kGiB;
    after.facts[1].value = std::int64_t{1};
    EXPECT_EQ(Tell(TwoDisks(), after),
              Told({"machine changed PC-1", "disk resized {DISK-1} (guess)",
                    "volume relabelled \\\\?\\Volume{d}\\", "volume remounted \\\\?\\Volume{e}\\"}));
}

TEST(FormatChanges, DiskThatFormat1WouldTell_IsAdded) {
    Machine after = TwoDisks();
    Disk disk = after.disks[0];
    disk.number = 2;
    disk.signature = 0xC00U;
    disk.size = 5 * kGiB;
    after.disks.push_back(disk);
    EXPECT_EQ(Tell(TwoDisksInFormat1(), after), Told({"disk added 0x00000C00"}));
}

// A disk without a signature: format 2 does not know its style.
TEST(FormatChanges, DiskOfUnknownStyle_IsNotComparedByItsTable) {
    Machine before = TwoDisksInFormat1();
    Disk disk = before.disks[0];
    disk.number = 2;
    disk.signature.reset();
    disk.size = 5 * kGiB;
    before.disks.push_back(disk);
    Machine after = TwoDisks();
    disk.style = Style::kRaw;
    disk.partitions.emplace();
    after.disks.push_back(disk);
    EXPECT_EQ(Tell(before, after), Told());
    EXPECT_EQ(Tell(after, before), Told());
}

TEST(FormatChanges, RemovableVolume_IsOnlyInFormat3) {
    Machine after = TwoDisksInFormat3();
    Volume stick;
    stick.path = "\\\\?\\Volume{stick}\\";
    stick.device = "\\Device\\HarddiskVolume9";
    stick.letter = "U:\\";
    after.volumes.push_back(stick);
    EXPECT_EQ(Tell(TwoDisks(), after), Told());
    EXPECT_EQ(Tell(after, TwoDisks()), Told());
    EXPECT_EQ(Tell(TwoDisksInFormat3(), after), Told({"volume added \\\\?\\Volume{stick}\\"}));
}

TEST(FormatChanges, SystemSections_AreCompared) {
    Machine after = TwoDisks();
    after.facts[3].value = "10.0.22631";
    after.facts[4].value = "10.0.22631";  // repeats it
    after.startup_options = {"Windows 11"};
    EXPECT_EQ(Tell(TwoDisks(), after), Told(2, "machine changed PC-1"));
    after = TwoDisks();
    after.facts[0].value = std::int64_t{1100};
    after.library_version = "9.51.1.";
    EXPECT_EQ(Tell(TwoDisks(), after), Told());
    EXPECT_EQ(Tell(TwoDisks(), after, true), Told(2, "machine changed PC-1"));
}

// A text that was empty is not in the model.
TEST(FormatChanges, ValueThatOneDocumentLacks_IsCompared) {
    Machine after = TwoDisks();
    after.facts.push_back({"OS", "Organization", "Brennholt"});
    EXPECT_EQ(Tell(TwoDisks(), after), Told({"machine changed PC-1"}));
    EXPECT_EQ(Tell(after, TwoDisks()), Told({"machine changed PC-1"}));
}

}  // namespace

}  // namespace documents::diff
