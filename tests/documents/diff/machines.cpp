#include "documents/diff/machines.h"

#include "documents/diff/output.h"

#include <gtest/gtest.h>

namespace documents::diff {

namespace {

Partition MbrPartition(std::uint64_t start, std::uint64_t length, bool active) {
    Partition partition;
    partition.place = {start, length};
    partition.mbr_type = std::uint8_t{7};
    partition.active = active;
    return partition;
}

Partition GptPartition(std::uint64_t start, std::uint64_t length, const char* id) {
    Partition partition;
    partition.place = {start, length};
    partition.gpt_type = kBasicData;
    partition.id = id;
    return partition;
}

Volume VolumeAt(const char* name, const char* letter, std::uint32_t serial, std::uint32_t disk,
                const Range& place) {
    Volume volume;
    volume.path = std::string("\\\\?\\Volume{") + name + "}\\";
    volume.device = "\\Device\\HarddiskVolume" + std::to_string(serial);
    volume.letter = letter;
    volume.size = place.length;
    volume.file_system = "NTFS";
    volume.label = std::string("Label of ") + name;
    volume.serial = serial;
    volume.flags = 255U;
    volume.block_size = 4096U;
    volume.used = place.length / 2;
    volume.system = false;
    volume.boot = false;
    volume.dynamic = false;
    volume.reference = std::string("{MADE-FOR-") + name + "}";
    Extent extent;
    extent.disk = disk;
    extent.place = place;
    volume.extents = std::vector{extent};
    volume.first_extent = extent;
    return volume;
}

}  // namespace

Machine TwoDisks() {
    Machine machine;
    machine.format = Format::kTwo;
    machine.library_version = "9.50.6732.";
    machine.facts = {{"Processor", "CurrentClockSpeed", std::int64_t{2300}},
                     {"ComputerSystem", "TotalPhysicalMemory", std::int64_t{8481230848}},
                     {"OS", "CSName", "PC-1"},
                     {"OS", "Version", "10.0.19045"},
                     {"BootConfig", "numeric_version_string", "10.0.19045"},
                     {"BootConfig", "product_type", std::int64_t{1}}};
    machine.startup_options = {"Windows 10"};

    Disk first;
    first.number = 0;
    first.size = 100 * kGiB;
    first.sector_size = 512U;
    first.style = Style::kMbr;
    first.signature = 0xA00U;
    first.interface_type = "IDE";
    first.partitions = {MbrPartition(kMiB, 500 * kMiB, true), MbrPartition(501 * kMiB, 80 * kGiB, false)};
    Disk second;
    second.number = 1;
    second.size = 200 * kGiB;
    second.sector_size = 512U;
    second.style = Style::kGpt;
    second.id = "{DISK-1}";
    second.interface_type = "SCSI";
    second.partitions = {GptPartition(kMiB, 50 * kGiB, "{PART-A}"),
                         GptPartition(60 * kGiB, 60 * kGiB, "{PART-B}")};
    machine.disks = {first, second};

    machine.volumes = {
        VolumeAt("boot", "", 1, 0, {kMiB, 500 * kMiB}), VolumeAt("c", "C:\\", 2, 0, {501 * kMiB, 80 * kGiB}),
        VolumeAt("d", "D:\\", 3, 1, {kMiB, 50 * kGiB}), VolumeAt("e", "E:\\", 4, 1, {60 * kGiB, 60 * kGiB})};
    machine.volumes[0].boot = true;
    machine.volumes[1].system = true;
    return machine;
}

Machine TwoDisksInFormat3() {
    Machine machine = TwoDisks();
    machine.format = Format::kThree;
    std::erase_if(machine.facts, [](const Fact& fact) { return fact.section == "BootConfig"; });
    for (Disk& disk : machine.disks) {
        disk.interface_type.reset();
        disk.geometry = Geometry{13054, 255, 63, 12};
        disk.dynamic = false;
    }
    machine.disks[1].id.reset();
    machine.disks[1].partitions.reset();
    for (Volume& volume : machine.volumes) {
        volume.mount_points.emplace();
        if (!volume.letter->empty()) {
            volume.mount_points->push_back(*volume.letter);
        }
        volume.reference.reset();
        volume.first_extent.reset();
        volume.free = *volume.size - *volume.used;
    }
    return machine;
}

Told Tell(const Machine& before, const Machine& after, bool all) {
    Told told;
    for (const Change& change : Compare(before, after, {all})) {
        told.push_back(std::string(NameOf(change.named.object)) + ' ' + std::string(NameOf(change.kind)) +
                       ' ' + change.named.id + (change.named.guess.empty() ? "" : " (guess)"));
    }
    return told;
}

void ExpectStory(const Story& story, const Machine& before) {
    SCOPED_TRACE(story.name);
    Machine after = before;
    story.change(after);
    EXPECT_EQ(Tell(before, after), story.told);
    EXPECT_EQ(Tell(after, before).empty(), story.told.empty());
    EXPECT_EQ(Tell(after, after), Told());
}

}  // namespace documents::diff
