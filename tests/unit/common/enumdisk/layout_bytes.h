#pragma once

#include "common/windows.h"

#include <cstddef>
#include <cstring>
#include <vector>

// Drive layouts in the binary form that a driver returns.
namespace layout_bytes {

// Sets the entry count of a layout, regardless of the entries that it contains.
inline void SetCount(std::vector<unsigned char>& layout, bool extended, DWORD count) {
    const std::size_t offset = extended ? offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionCount)
                                        : offsetof(DRIVE_LAYOUT_INFORMATION, PartitionCount);
    std::memcpy(layout.data() + offset, &count, sizeof(count));
}

// A GPT layout with partitions of these types.
inline std::vector<unsigned char> Gpt(const GUID& disk_id, const std::vector<GUID>& types) {
    constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    DRIVE_LAYOUT_INFORMATION_EX header{};
    header.PartitionStyle = PARTITION_STYLE_GPT;
    header.PartitionCount = static_cast<DWORD>(types.size());
    header.Gpt.DiskId = disk_id;
    std::vector<unsigned char> bytes(kHeader + types.size() * sizeof(PARTITION_INFORMATION_EX));
    std::memcpy(bytes.data(), &header, kHeader);
    for (std::size_t i = 0; i < types.size(); ++i) {
        PARTITION_INFORMATION_EX entry{};
        entry.PartitionStyle = PARTITION_STYLE_GPT;
        entry.PartitionNumber = static_cast<DWORD>(i + 1);
        entry.Gpt.PartitionType = types[i];
        std::memcpy(bytes.data() + kHeader + i * sizeof(entry), &entry, sizeof(entry));
    }
    return bytes;
}

}  // namespace layout_bytes
