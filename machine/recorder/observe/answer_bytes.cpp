#include "machine/recorder/observe/answer_bytes.h"

#include <algorithm>
#include <iterator>

namespace recorder {

std::vector<DISK_EXTENT> ExtentsIn(const machine::Bytes& bytes) {
    const auto count = RecordAt<DWORD>(bytes, 0);
    return count ? RecordsAt<DISK_EXTENT>(bytes, offsetof(VOLUME_DISK_EXTENTS, Extents), *count)
                 : std::vector<DISK_EXTENT>();
}

std::optional<DRIVE_LAYOUT_INFORMATION_EX> LayoutHeaderIn(const machine::Bytes& bytes) {
    constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    if (bytes.size() < kHeader) {
        return std::nullopt;
    }
    DRIVE_LAYOUT_INFORMATION_EX layout{};
    std::memcpy(&layout, bytes.data(), kHeader);
    return layout;
}

machine::Partition PartitionIn(const PARTITION_INFORMATION_EX& information) {
    machine::Partition partition;
    std::memcpy(&partition.style, &information.PartitionStyle, sizeof(partition.style));
    partition.offset = static_cast<std::uint64_t>(information.StartingOffset.QuadPart);
    partition.length = static_cast<std::uint64_t>(information.PartitionLength.QuadPart);
    partition.number = information.PartitionNumber;
    partition.rewrite = information.RewritePartition != 0;
    if (partition.style == PARTITION_STYLE_GPT) {
        partition.gpt_type = information.Gpt.PartitionType;
        partition.gpt_id = information.Gpt.PartitionId;
        partition.gpt_attributes = information.Gpt.Attributes;
        partition.gpt_name.assign(
            std::begin(information.Gpt.Name),
            std::find(std::begin(information.Gpt.Name), std::end(information.Gpt.Name), L'\0'));
    } else if (partition.style == PARTITION_STYLE_MBR) {
        partition.mbr_type = information.Mbr.PartitionType;
        partition.active = information.Mbr.BootIndicator != 0;
        partition.recognized = information.Mbr.RecognizedPartition != 0;
        partition.hidden_sectors = information.Mbr.HiddenSectors;
    }
    return partition;
}

std::vector<machine::Partition> PartitionsIn(const machine::Bytes& bytes) {
    std::vector<machine::Partition> partitions;
    const auto header = LayoutHeaderIn(bytes);
    for (const PARTITION_INFORMATION_EX& entry :
         RecordsAt<PARTITION_INFORMATION_EX>(bytes, offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry),
                                             header ? header->PartitionCount : 0)) {
        partitions.push_back(PartitionIn(entry));
    }
    return partitions;
}

std::vector<machine::Partition> OlderPartitionsIn(const machine::Bytes& bytes) {
    std::vector<machine::Partition> partitions;
    const auto count = RecordAt<DWORD>(bytes, offsetof(DRIVE_LAYOUT_INFORMATION, PartitionCount));
    for (const PARTITION_INFORMATION& entry : RecordsAt<PARTITION_INFORMATION>(
             bytes, offsetof(DRIVE_LAYOUT_INFORMATION, PartitionEntry), count.value_or(0))) {
        machine::Partition partition;
        partition.style = PARTITION_STYLE_MBR;
        partition.offset = static_cast<std::uint64_t>(entry.StartingOffset.QuadPart);
        partition.length = static_cast<std::uint64_t>(entry.PartitionLength.QuadPart);
        partition.number = entry.PartitionNumber;
        partition.rewrite = entry.RewritePartition != 0;
        partition.mbr_type = entry.PartitionType;
        partition.active = entry.BootIndicator != 0;
        partition.recognized = entry.RecognizedPartition != 0;
        partition.hidden_sectors = entry.HiddenSectors;
        partitions.push_back(partition);
    }
    return partitions;
}

}  // namespace recorder
