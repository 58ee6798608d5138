#pragma once

#include "machine/control_codes.h"
#include "machine/description.h"
#include "machine/json_cursor.h"

#include <filesystem>
#include <vector>

// The pieces of a description file. Each refuses what it does not know or what does not fit together.
namespace machine::parsing {

std::vector<Disk> Disks(const JsonCursor& cursor, const std::filesystem::path& directory);

// The table of an MBR or GPT disk whose size, sector size and style are known.
void Partitions(const JsonCursor& cursor, Disk& disk);

// Refuses partitions outside the disk or each other's way.
void CheckPartitions(const JsonCursor& cursor, const Disk& disk);

std::vector<Volume> Volumes(const JsonCursor& cursor, const std::vector<Disk>& disks);

// Fills what the file left out, from the rest of the volume and from the disk under it.
void CompleteVolume(JsonObject& object, Volume& volume, const std::vector<Disk>& disks);

std::vector<DosDevice> DosDevices(const JsonCursor& cursor);
std::vector<ObjectDirectory> Directories(const JsonCursor& cursor);
std::vector<RegistryKey> Registry(const JsonCursor& cursor);
Firmware FirmwareOf(const JsonCursor& cursor, Firmware otherwise);
std::set<std::string> Missing(const JsonCursor& cursor);

// The member "errors", when there, of calls that the scope has.
CallErrors ErrorsOf(JsonObject& object, CallScope scope);

WmiInstance Properties(const JsonCursor& cursor);

// Puts the described classes over the derived ones; a class that is null is unknown.
void Wmi(const JsonCursor& cursor, Description& description);

}  // namespace machine::parsing
