#pragma once

#include "machine/description/kinds.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The tables of the format, from the whole machine down to its parts.
namespace machine::rows {

const Table<Description>& MachineTable();

const Table<Disk>& DiskTable();
const Table<Disk>& GeometryTable();
const Table<Disk>& DetectionTable();
Kind<std::vector<Disk>> Disks();
std::wstring UsualDiskDevice(std::uint32_t index);  // "\Device\Harddisk0\DR0"

// The file system of a disk without a table, which the layout reports as one partition: the whole disk.
const Table<Partition>& SuperFloppyTable();
bool IsSuperFloppy(const Disk& disk);

// A partition as it is described. What is not given is derived from the partitions beside it.
struct DescribedPartition : Partition {
    std::optional<std::uint32_t> given_number{};
    std::optional<std::uint32_t> slot{};          // 1 to 4
    std::optional<std::uint32_t> given_hidden{};  // sectors
    std::optional<bool> given_recognized{};
    std::optional<std::uint64_t> record{};  // bytes from the start of the disk
    std::vector<DescribedPartition> logical{};
};

const Table<DescribedPartition>& PartitionTable();  // both styles
const Table<DescribedPartition>& MbrTable();
const Table<DescribedPartition>& GptTable();

// The partitions of an MBR or GPT disk. Its size, sector size and style must be set.
void ReadPartitions(Disk& disk, const JsonCursor& cursor, const Place& outer);
Json WritePartitions(const Disk& disk, const Place& outer);

// The same for the described partitions of an MBR disk; `cursor` is their list.
void PutMbrPartitions(Disk& disk, const std::vector<DescribedPartition>& list, const JsonCursor& cursor);
std::vector<DescribedPartition> DescribedMbr(const Disk& disk);

// Why the partitions cannot be those of a real disk: one ends beyond the disk, or two overlap. Empty if they
// can.
std::string PartitionFault(const Disk& disk);

const Table<Volume>& VolumeTable();
Kind<std::vector<Volume>> Volumes();
Kind<std::wstring> DeviceName();

// The defaults of a volume's size and file system, from its other members.
Table<Volume> SpaceRows();

const Table<Firmware>& FirmwareTable();
const Table<ObjectDirectory>& DirectoryTable();
Kind<std::vector<DosDevice>> DosDevices();
Kind<std::vector<ObjectDirectory>> Directories();
Kind<std::vector<RegistryKey>> Registry();

Kind<WmiInstance> Properties();

// The classes that a description overrides. When reading, the derived ones are filled in first; only
// differences from them are written.
Row<Description> WmiRow();

}  // namespace machine::rows
