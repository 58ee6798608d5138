#include "common/disk/disk_geometry.h"

#include "common/text/raw_value.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace bmr_common {

namespace {

constexpr std::size_t kPartitionRecord = offsetof(DISK_GEOMETRY_EX, Data);
constexpr std::size_t kSmallestBytes = kPartitionRecord + sizeof(DISK_PARTITION_INFO);
constexpr std::size_t kSharedBytes = 40;  // up to and including the size and style of the partition record
constexpr std::size_t kFreshBytes = 120;

}  // namespace

DiskGeometry::DiskGeometry(win::ByteBuffer bytes) : bytes_(std::move(bytes)) {
    if (bytes_.size() < kSmallestBytes) {
        bytes_.resize(kSmallestBytes);
    }
}

DiskGeometry DiskGeometry::ForFreshTable(std::uint32_t style) const {
    win::ByteBuffer bytes(bytes_.begin(), bytes_.begin() + kSharedBytes);
    bytes.resize(kFreshBytes);
    DiskGeometry fresh(std::move(bytes));
    DISK_PARTITION_INFO& record = fresh.partition_information();
    record.SizeOfPartitionInfo = sizeof(DISK_PARTITION_INFO);
    SetRawValue(record.PartitionStyle, style);
    return fresh;
}

const DISK_GEOMETRY_EX& DiskGeometry::header() const {
    return *reinterpret_cast<const DISK_GEOMETRY_EX*>(bytes_.data());
}

const DISK_PARTITION_INFO& DiskGeometry::partition_information() const {
    return *reinterpret_cast<const DISK_PARTITION_INFO*>(bytes_.data() + kPartitionRecord);
}

DISK_PARTITION_INFO& DiskGeometry::partition_information() {
    return *reinterpret_cast<DISK_PARTITION_INFO*>(bytes_.data() + kPartitionRecord);
}

const DISK_GEOMETRY& DiskGeometry::geometry() const {
    return header().Geometry;
}

std::int64_t DiskGeometry::disk_size() const {
    return header().DiskSize.QuadPart;
}

std::uint32_t DiskGeometry::media_type() const {
    return RawValue(geometry().MediaType);
}

std::uint32_t DiskGeometry::partition_style() const {
    return RawValue(partition_information().PartitionStyle);
}

std::uint32_t DiskGeometry::signature() const {
    return partition_information().Mbr.Signature;
}

const GUID& DiskGeometry::disk_id() const {
    return partition_information().Gpt.DiskId;
}

void DiskGeometry::SetSignature(std::uint32_t signature) {
    partition_information().Mbr.Signature = signature;
}

void DiskGeometry::SetDiskId(const GUID& disk_id) {
    partition_information().Gpt.DiskId = disk_id;
}

DISK_DETECTION_INFO DiskGeometry::detection() const {
    DISK_DETECTION_INFO detection{};
    const std::size_t start = kPartitionRecord + std::size_t{partition_information().SizeOfPartitionInfo};
    if (start < bytes_.size()) {
        std::memcpy(&detection, bytes_.data() + start, std::min(sizeof(detection), bytes_.size() - start));
    }
    return detection;
}

std::uint32_t DiskGeometry::detection_type() const {
    return RawValue(detection().DetectionType);
}

}  // namespace bmr_common
