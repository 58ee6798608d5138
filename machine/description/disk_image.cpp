#include "machine/description/disk_image.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace machine {
namespace {

std::uint8_t BootEntryType(const Bytes& sector, std::size_t slot) {
    return sector[kEntriesOffset + slot * kEntrySize + 4];
}

bool IsBootRecord(const Bytes& sector) {
    if (Get16(sector, kBootSignatureOffset) != kBootSignature) {
        return false;
    }
    // An invalid boot indicator means a boot sector without a partition table: the bytes are code.
    for (std::size_t slot = 0; slot < 4; ++slot) {
        if ((sector[kEntriesOffset + slot * kEntrySize] & 0x7F) != 0) {
            return false;
        }
    }
    return true;
}

// The system uses a GPT only if the protective entry is the only entry in the boot record.
bool IsProtective(const Bytes& sector) {
    std::size_t used = 0;
    std::size_t protective = 0;
    for (std::size_t slot = 0; slot < 4; ++slot) {
        used += BootEntryType(sector, slot) != 0 ? 1 : 0;
        protective += BootEntryType(sector, slot) == kProtectiveType ? 1 : 0;
    }
    return used == 1 && protective == 1;
}

void MakeRaw(Disk& disk) {
    disk.style = PARTITION_STYLE_RAW;
    disk.signature = 0;
    disk.checksum = 0;
    disk.disk_id = GUID{};
    disk.partitions.clear();
}

void WipeBootEntries(Bytes& sector) {
    std::fill(sector.begin() + kDiskSignatureOffset, sector.begin() + kBootSignatureOffset + 2,
              std::uint8_t{0});
}

// Makes the copy first if the image is to be written to one. Returns false if the image is not writable.
bool PrepareForWriting(Image& image) {
    if (image.write_to) {
        if (!::CopyFileW(image.file.wstring().c_str(), image.write_to->wstring().c_str(), FALSE)) {
            throw std::runtime_error("image cannot be copied, error " + std::to_string(GetLastError()));
        }
        image.file = *image.write_to;
        image.writable = true;
        image.write_to.reset();
    }
    return image.writable;
}

}  // namespace

void ReadDiskImage(Disk& disk) {
    ImageFile image(disk.image->file);
    disk.size = image.size();
    if (disk.size < disk.bytes_per_sector) {
        throw std::runtime_error("image is smaller than a sector");
    }
    MakeRaw(disk);
    const Bytes boot_sector = image.Read(0, disk.bytes_per_sector);
    if (!IsBootRecord(boot_sector)) {
        return;
    }
    if (!IsProtective(boot_sector)) {
        ReadMbrTable(disk, image, boot_sector);
    } else if (!ReadGptTable(disk, image)) {
        MakeRaw(disk);
    }
}

void WriteDiskImage(Disk& disk) {
    if (!disk.image || !PrepareForWriting(*disk.image)) {
        return;
    }
    ImageFile image(disk.image->file, true);
    if (disk.style == PARTITION_STYLE_GPT) {
        WriteGptTable(disk, image);
        return;
    }
    WipeGptHeaders(disk, image);
    if (disk.style == PARTITION_STYLE_MBR) {
        WriteMbrTable(disk, image);
    } else {
        Bytes sector = image.Read(0, disk.bytes_per_sector);
        WipeBootEntries(sector);
        image.Write(0, sector);
    }
}

std::uint32_t WriteSectors(Disk& disk, std::uint64_t offset, const Bytes& bytes) {
    if (offset % disk.bytes_per_sector != 0 || bytes.size() % disk.bytes_per_sector != 0) {
        return ERROR_INVALID_PARAMETER;
    }
    if (offset > disk.size || bytes.size() > disk.size - offset) {
        return ERROR_SECTOR_NOT_FOUND;
    }
    try {
        if (!PrepareForWriting(*disk.image)) {
            return ERROR_WRITE_PROTECT;
        }
        ImageFile(disk.image->file, true).Write(offset, bytes);
        ReadDiskImage(disk);
    } catch (const std::runtime_error&) {
        return ERROR_WRITE_FAULT;
    }
    return 0;
}

void PutBootEntry(Bytes& sector, std::size_t slot, const Partition& entry, std::uint64_t start,
                  std::uint64_t sectors) {
    const std::size_t at = kEntriesOffset + slot * kEntrySize;
    std::fill_n(sector.begin() + static_cast<std::ptrdiff_t>(at), kEntrySize, std::uint8_t{0});
    if (entry.mbr_type == 0) {
        return;
    }
    const auto put_address = [&](std::size_t place, std::uint64_t lba) {
        constexpr std::uint64_t kHeads = 255;
        constexpr std::uint64_t kSectors = 63;
        const std::uint64_t cylinder = lba / (kHeads * kSectors);
        const bool beyond = cylinder > 1023;
        sector[place] = beyond ? 0xFE : static_cast<std::uint8_t>(lba / kSectors % kHeads);
        sector[place + 1] =
            beyond ? 0xFF : static_cast<std::uint8_t>((lba % kSectors + 1) | ((cylinder >> 2) & 0xC0));
        sector[place + 2] = beyond ? 0xFF : static_cast<std::uint8_t>(cylinder);
    };
    sector[at] = entry.active ? 0x80 : 0x00;
    put_address(at + 1, start);
    sector[at + 4] = entry.mbr_type;
    put_address(at + 5, start + sectors - 1);
    Put32(sector, at + 8, static_cast<std::uint32_t>(std::min<std::uint64_t>(start, 0xFFFFFFFFU)));
    Put32(sector, at + 12, static_cast<std::uint32_t>(std::min<std::uint64_t>(sectors, 0xFFFFFFFFU)));
}

}  // namespace machine
