#pragma once

#include "machine/description/description.h"
#include "machine/description/image_file.h"

#include <cstdint>

namespace machine {

// Reads size, style, ids and partition table of a disk from its image, as the system would. If the system
// would not accept the table, the disk becomes raw. Throws std::runtime_error if the image cannot be read or
// is smaller than a sector.
void ReadDiskImage(Disk& disk);

// Writes the disk's partition table to its image or to the copy. Does nothing if there is no image or it is
// not writable. Throws std::runtime_error.
void WriteDiskImage(Disk& disk);

// Writes whole sectors to the image, which must exist, and reads the partition table again. Returns a Win32
// error, 0 on success.
std::uint32_t WriteSectors(Disk& disk, std::uint64_t offset, const Bytes& bytes);

// The two partition table formats. Offset 0 of `image` is the first byte of the disk.

void ReadMbrTable(Disk& disk, ImageFile& image, const Bytes& boot_sector);
void WriteMbrTable(const Disk& disk, ImageFile& image);

// Reads the primary GPT or, if it is damaged, the backup. Returns false if both are damaged.
bool ReadGptTable(Disk& disk, ImageFile& image);
void WriteGptTable(const Disk& disk, ImageFile& image);

// Overwrites the primary and backup GPT headers, if they exist, with zeros.
void WipeGptHeaders(const Disk& disk, ImageFile& image);

// Boot record fields that both formats use.

constexpr std::size_t kBootSignatureOffset = 510;
constexpr std::uint16_t kBootSignature = 0xAA55;
constexpr std::size_t kDiskSignatureOffset = 440;
constexpr std::size_t kEntriesOffset = 446;
constexpr std::size_t kEntrySize = 16;
constexpr std::uint8_t kProtectiveType = 0xEE;

// Writes one 16-byte boot record entry; `start` and `sectors` are in sectors. CHS addresses assume 255 heads
// and 63 sectors per track.
void PutBootEntry(Bytes& sector, std::size_t slot, const Partition& entry, std::uint64_t start,
                  std::uint64_t sectors);

}  // namespace machine
