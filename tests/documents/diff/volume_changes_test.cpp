#include "documents/diff/machines.h"

#include <gtest/gtest.h>

#include <utility>

namespace documents::diff {

namespace {

Volume& D(Machine& machine) {
    return machine.volumes[2];
}

Volume& E(Machine& machine) {
    return machine.volumes[3];
}

Extent ExtentOn(std::uint32_t disk, std::uint64_t start, std::uint64_t length) {
    Extent extent;
    extent.disk = disk;
    extent.place = {start, length};
    return extent;
}

const std::vector<Story> kStories = {
    {"relabelled",
     [](Machine& machine) { D(machine).label = "Other"; },
     {"volume relabelled \\\\?\\Volume{d}\\"}},
    {"another letter",
     [](Machine& machine) { D(machine).letter = "F:\\"; },
     {"volume remounted \\\\?\\Volume{d}\\"}},
    {"letters exchanged",
     [](Machine& machine) { std::swap(D(machine).letter, E(machine).letter); },
     {"volume remounted \\\\?\\Volume{d}\\", "volume remounted \\\\?\\Volume{e}\\"}},
    {"reformatted",
     [](Machine& machine) {
         D(machine).serial = 77U;
         D(machine).file_system = "ReFS";
         D(machine).block_size = 65536U;
     },
     {"volume reformatted \\\\?\\Volume{d}\\"}},
    {"reformatted with another label",
     [](Machine& machine) {
         D(machine).serial = 77U;
         D(machine).label = "";
     },
     {"volume relabelled \\\\?\\Volume{d}\\", "volume reformatted \\\\?\\Volume{d}\\"}},
    {"resized",
     [](Machine& machine) {
         D(machine).size = 40 * kGiB;
         D(machine).extents->front().place.length = 40 * kGiB;
     },
     {"volume resized \\\\?\\Volume{d}\\"}},
    {"extended by a place on another disk",
     [](Machine& machine) {
         D(machine).size = 51 * kGiB;
         D(machine).extents->push_back(ExtentOn(0, 90 * kGiB, kGiB));
     },
     {"volume resized \\\\?\\Volume{d}\\"}},
    {"moved to another offset",
     [](Machine& machine) { D(machine).extents->front().place.start = 2 * kMiB; },
     {"volume moved \\\\?\\Volume{d}\\"}},
    {"moved to another disk",
     [](Machine& machine) { D(machine).extents->front().disk = 0; },
     {"volume moved \\\\?\\Volume{d}\\"}},
    {"dynamic without a dynamic disk",
     [](Machine& machine) { D(machine).dynamic = true; },
     {"volume dynamic \\\\?\\Volume{d}\\"}},
    {"boots from another volume",
     [](Machine& machine) {
         machine.volumes[0].boot = false;
         machine.volumes[1].boot = true;
     },
     {"volume role \\\\?\\Volume{boot}\\", "volume role \\\\?\\Volume{c}\\"}},
    {"removed", [](Machine& machine) { machine.volumes.pop_back(); }, {"volume removed \\\\?\\Volume{e}\\"}},
    {"another path, the same serial number",
     [](Machine& machine) { D(machine).path = "\\\\?\\Volume{x}\\"; },
     {"volume changed \\\\?\\Volume{d}\\"}},
    {"another path and serial number in the same place",
     [](Machine& machine) {
         D(machine).path = "\\\\?\\Volume{x}\\";
         D(machine).serial = 77U;
         D(machine).label = "Other";
     },
     {"volume replaced \\\\?\\Volume{d}\\"}},
    {"another path, serial number and place",
     [](Machine& machine) {
         D(machine).path = "\\\\?\\Volume{x}\\";
         D(machine).serial = 77U;
         D(machine).extents->front().place.start = 2 * kMiB;
     },
     {"volume removed \\\\?\\Volume{d}\\", "volume added \\\\?\\Volume{x}\\"}},
    {"file system no longer known",
     [](Machine& machine) {
         D(machine).file_system.reset();
         D(machine).label.reset();
         D(machine).serial.reset();
         D(machine).flags.reset();
         D(machine).block_size.reset();
         D(machine).used.reset();
     },
     {"volume changed \\\\?\\Volume{d}\\"}},
    {"order of the rows", [](Machine& machine) { std::swap(D(machine), E(machine)); }, {}},
    {"another capture: other made GUIDs",
     [](Machine& machine) {
         D(machine).reference = "{MADE-AGAIN}";
         machine.boot_reference = "{MADE-AGAIN-TOO}";
     },
     {}},
};

TEST(VolumeChanges, Story_IsToldAndNothingElse) {
    for (const Story& story : kStories) {
        ExpectStory(story, TwoDisks());
    }
}

TEST(VolumeChanges, Folders_AreComparedWithoutOrder) {
    Machine before = TwoDisksInFormat3();
    D(before).mount_points = {"D:\\", "C:\\Data\\"};
    Machine after = before;
    D(after).mount_points = {"C:\\Data\\", "D:\\"};
    EXPECT_EQ(Tell(before, after), Told());
    D(after).mount_points = {"D:\\", "C:\\Other\\"};
    EXPECT_EQ(Tell(before, after), Told({"volume remounted \\\\?\\Volume{d}\\"}));
}

TEST(VolumeChanges, SpaceAndNames_CountWithAllOnly) {
    const Machine before = TwoDisksInFormat3();
    Machine after = before;
    D(after).used = kGiB;
    D(after).free = 49 * kGiB;
    D(after).device = "\\Device\\HarddiskVolume9";
    D(after).flags = 1U;
    EXPECT_EQ(Tell(before, after), Told());
    EXPECT_EQ(Tell(before, after, true), Told(4, "volume changed \\\\?\\Volume{d}\\"));
}

// Clones: the serial number alone would mix them up.
TEST(VolumeChanges, VolumesWithOneSerialNumber_AreKnownByTheirPlaces) {
    Machine before = TwoDisks();
    D(before).serial = 5U;
    E(before).serial = 5U;
    Machine after = before;
    D(after).path = "\\\\?\\Volume{y}\\";
    E(after).path = "\\\\?\\Volume{z}\\";
    std::swap(D(after), E(after));
    EXPECT_EQ(Tell(before, after),
              Told({"volume changed \\\\?\\Volume{d}\\", "volume changed \\\\?\\Volume{e}\\"}));
}

// A reserved partition in format 3: no path, no file system.
TEST(VolumeChanges, VolumeWithoutAName_IsKnownByItsPlace) {
    Machine before = TwoDisksInFormat3();
    Volume reserved;
    reserved.device = "\\Device\\HarddiskVolume5";
    reserved.size = 16 * kMiB;
    reserved.extents = {ExtentOn(1, 130 * kGiB, 16 * kMiB)};
    before.volumes.push_back(reserved);
    Machine after = before;
    after.volumes.back().device = "\\Device\\HarddiskVolume6";
    after.volumes.back().size = 17 * kMiB;
    EXPECT_EQ(Tell(before, after), Told({"volume resized disk 1@139586437120 (guess)"}));
}

TEST(VolumeChanges, OpticalDrive_IsKnownByItsDevice) {
    Machine before = TwoDisksInFormat3();
    Volume drive;
    drive.device = "\\Device\\CdRom0";
    drive.letter = "G:\\";
    drive.mount_points = {"G:\\"};
    before.volumes.push_back(drive);
    Machine after = before;
    after.volumes.back().mount_points = {"H:\\"};
    after.volumes.back().letter = "H:\\";
    EXPECT_EQ(Tell(before, after), Told({"volume remounted \\Device\\CdRom0"}));
}

TEST(VolumeChanges, ExtentOnADiskThatIsNotThere_IsKnownByTheNumber) {
    Machine before = TwoDisksInFormat3();
    D(before).extents->front().disk = 9;
    Machine after = before;
    EXPECT_EQ(Tell(before, after), Told());
    D(after).extents->front().disk = 8;
    EXPECT_EQ(Tell(before, after), Told({"volume moved \\\\?\\Volume{d}\\"}));
}

}  // namespace

}  // namespace documents::diff
