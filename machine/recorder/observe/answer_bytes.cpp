#include "machine/recorder/observe/answer_bytes.h"

#include "machine/description/newer_members.h"

#include <algorithm>
#include <iterator>

namespace recorder {

namespace {

// The members that both records of a partition have.
template <class Information>
machine::Partition PlaceIn(const Information& information) {
    machine::Partition partition;
    partition.offset = static_cast<std::uint64_t>(information.StartingOffset.QuadPart);
    partition.length = static_cast<std::uint64_t>(information.PartitionLength.QuadPart);
    partition.number = information.PartitionNumber;
    partition.rewrite = information.RewritePartition != 0;
    return partition;
}

// The members of an MBR partition: in the older record itself, in the other one a record of their own.
template <class Mbr>
void TakeMbr(const Mbr& mbr, machine::Partition& partition) {
    partition.mbr_type = mbr.PartitionType;
    partition.active = mbr.BootIndicator != 0;
    partition.recognized = mbr.RecognizedPartition != 0;
    partition.hidden_sectors = mbr.HiddenSectors;
}

template <class Information>
std::vector<machine::Partition> PartitionsAt(const machine::Bytes& bytes, std::size_t offset,
                                             std::size_t count) {
    std::vector<machine::Partition> partitions;
    for (const Information& entry : RecordsAt<Information>(bytes, offset, count)) {
        partitions.push_back(PartitionIn(entry));
    }
    return partitions;
}

}  // namespace

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
    machine::Partition partition = PlaceIn(information);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&information);
    partition.service = bytes[machine::kServicePartition] != 0;
    std::memcpy(&partition.style, &information.PartitionStyle, sizeof(partition.style));
    if (partition.style == PARTITION_STYLE_GPT) {
        partition.gpt_type = information.Gpt.PartitionType;
        partition.id = information.Gpt.PartitionId;
        partition.gpt_attributes = information.Gpt.Attributes;
        partition.gpt_name.assign(
            std::begin(information.Gpt.Name),
            std::find(std::begin(information.Gpt.Name), std::end(information.Gpt.Name), L'\0'));
    } else if (partition.style == PARTITION_STYLE_MBR) {
        TakeMbr(information.Mbr, partition);
        std::memcpy(&partition.id, bytes + machine::kMbrPartitionId, sizeof(partition.id));
    }
    return partition;
}

machine::Partition PartitionIn(const PARTITION_INFORMATION& information) {
    machine::Partition partition = PlaceIn(information);
    partition.style = PARTITION_STYLE_MBR;
    TakeMbr(information, partition);
    return partition;
}

std::vector<machine::Partition> PartitionsIn(const machine::Bytes& bytes) {
    const auto header = LayoutHeaderIn(bytes);
    return PartitionsAt<PARTITION_INFORMATION_EX>(
        bytes, offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry), header ? header->PartitionCount : 0);
}

std::vector<machine::Partition> OlderPartitionsIn(const machine::Bytes& bytes) {
    const auto count = RecordAt<DWORD>(bytes, offsetof(DRIVE_LAYOUT_INFORMATION, PartitionCount));
    return PartitionsAt<PARTITION_INFORMATION>(bytes, offsetof(DRIVE_LAYOUT_INFORMATION, PartitionEntry),
                                               count.value_or(0));
}

std::optional<machine::Partition> PartitionIn(const machine::Bytes* answer, const machine::Bytes* older) {
    if (const auto partition = RecordIn<PARTITION_INFORMATION_EX>(answer)) {
        return PartitionIn(*partition);
    }
    const auto mbr = RecordIn<PARTITION_INFORMATION>(older);
    return mbr ? std::optional(PartitionIn(*mbr)) : std::nullopt;
}

std::optional<DISK_PARTITION_INFO> PartitionInfoIn(const machine::Bytes& bytes) {
    return RecordAt<DISK_PARTITION_INFO>(bytes, offsetof(DISK_GEOMETRY_EX, Data));
}

std::optional<DISK_DETECTION_INFO> DetectionInfoIn(const machine::Bytes& bytes) {
    return RecordAt<DISK_DETECTION_INFO>(bytes,
                                         offsetof(DISK_GEOMETRY_EX, Data) + sizeof(DISK_PARTITION_INFO));
}

}  // namespace recorder
