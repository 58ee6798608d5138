#pragma once

#include "machine/description.h"
#include "machine/image_file.h"

#include <cstdint>

namespace machine {

// Fills size, style, ids and table of a disk from the bytes of its image, as the system would read them: a
// table that the system would not accept makes a raw disk. Throws std::runtime_error when the image cannot
// be read or is smaller than a sector.
void ReadDiskImage(Disk& disk);

// Writes the disk's table into its image, or into the copy of it; nothing when the image is to be left
// alone. Throws std::runtime_error.
void WriteDiskImage(Disk& disk);

// Writes whole sectors into the image and reads the table again. A Win32 error, 0 for success.
std::uint32_t WriteSectors(Disk& disk, std::uint64_t offset, const Bytes& bytes);

// The two table formats. `image` holds the disk from its first byte.

void ReadMbrTable(Disk& disk, ImageFile& image, const Bytes& boot_sector);
void WriteMbrTable(const Disk& disk, ImageFile& image);

// From the primary header, or from the backup when the primary is damaged; false when both are.
bool ReadGptTable(Disk& disk, ImageFile& image);
void WriteGptTable(const Disk& disk, ImageFile& image);

// Makes a GPT that may be there unreadable.
void WipeGptHeaders(const Disk& disk, ImageFile& image);

// Fields of a boot record, common to both.

constexpr std::size_t kBootSignatureOffset = 510;
constexpr std::uint16_t kBootSignature = 0xAA55;
constexpr std::size_t kDiskSignatureOffset = 440;
constexpr std::size_t kEntriesOffset = 446;
constexpr std::size_t kEntrySize = 16;
constexpr std::uint8_t kProtectiveType = 0xEE;

// One 16-byte entry of a boot record; the cylinder addresses are those of a 255-head, 63-sector geometry.
void PutBootEntry(Bytes& sector, std::size_t slot, const Partition& entry, std::uint64_t start,
                  std::uint64_t sectors);

}  // namespace machine
