#pragma once

#include "machine/description/control_codes.h"
#include "machine/description/description.h"
#include "machine/description/json_cursor.h"

#include <filesystem>
#include <vector>

// Parsers for the parts of a description file. Each throws DescriptionError for unknown keys and for invalid
// or inconsistent values.
namespace machine::parsing {

std::vector<Disk> Disks(const JsonCursor& cursor, const std::filesystem::path& directory);

// Parses the partitions of an MBR or GPT disk. Its size, sector size and style must be set.
void Partitions(const JsonCursor& cursor, Disk& disk);

// Parses the file system of a disk without a table, which the layout reports as one partition: the whole
// disk.
void SuperFloppy(const JsonCursor& cursor, Disk& disk);

// Refuses partitions that extend beyond the disk or overlap.
void CheckPartitions(const JsonCursor& cursor, const Disk& disk);

std::vector<Volume> Volumes(const JsonCursor& cursor, const std::vector<Disk>& disks);

// Parses the remaining fields of a volume. Defaults come from its other fields and from the disk that it is
// on.
void CompleteVolume(JsonObject& object, Volume& volume, const std::vector<Disk>& disks);

std::vector<DosDevice> DosDevices(const JsonCursor& cursor);
std::vector<ObjectDirectory> Directories(const JsonCursor& cursor);
std::vector<RegistryKey> Registry(const JsonCursor& cursor);
Firmware FirmwareOf(const JsonCursor& cursor, Firmware otherwise);
std::set<std::string> Missing(const JsonCursor& cursor);

// Parses the optional member "errors". Refuses calls that cannot fail in the scope.
CallErrors ErrorsOf(JsonObject& object, CallScope scope);

WmiInstance Properties(const JsonCursor& cursor);

// Merges the described classes into the derived ones. A null class becomes unknown.
void Wmi(const JsonCursor& cursor, Description& description);

}  // namespace machine::parsing
