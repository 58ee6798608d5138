#include "common/disk/partition_manager_gpt.h"

#include "common/disk/partition_gpt.h"
#include "common/logger/trace.h"
#include "common/platform/guid.h"
#include "common/record/partition_rows.h"
#include "common/text/byte_range.h"

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <algorithm>

namespace bmr_common {

namespace {

// The protective MBR, both headers and both arrays of 128 entries.
constexpr std::int64_t kGptOverheadBytes = 34304;

PartitionRow FreeSpaceRow(std::int64_t offset, std::int64_t length) {
    PartitionRow row;
    row.offset = offset;
    row.length = length;
    row.length_copy = length;
    row.kind = kUnallocated;
    row.operation = kUnallocated;
    return row;
}

PartitionRow RowOf(const PartitionGPT& partition, std::int32_t number) {
    PartitionRow row;
    row.offset = partition.starting_offset();
    row.length = partition.length();
    row.length_copy = partition.length();
    row.kind = kPrimary;
    row.operation = kExisting;
    row.partition_number = number;
    row.active = partition.is_bootable();
    row.gpt_type = partition.entry().Gpt.PartitionType;
    row.gpt_id = partition.entry().Gpt.PartitionId;
    return row;
}

}  // namespace

PartitionPtr PartitionManagerGPT::CreatePartition() const {
    return boost::make_shared<PartitionGPT>();
}

void PartitionManagerGPT::Initialize(const UniqueFile& drive) {
    InitializeExpecting(PARTITION_STYLE_GPT, L"Partitions are not GPT but is ",
                        L"bmr_common::PartitionManagerGPT::Initialize", drive);
}

void PartitionManagerGPT::InitializeEmptyLayout(const GUID& disk_id, std::int64_t disk_size) {
    layout_ = MakeLayout(0);
    DRIVE_LAYOUT_INFORMATION_EX& layout = *mutable_layout();
    layout.PartitionStyle = PARTITION_STYLE_GPT;
    layout.Gpt.DiskId = disk_id;
    layout.Gpt.StartingUsableOffset.QuadPart = kFirstMegabyte;
    // Extends past the end of the disk: compatibility C156
    layout.Gpt.UsableLength.QuadPart = LengthBetween(kGptOverheadBytes, disk_size);
    layout.Gpt.MaxPartitionCount = kUsualPartitionCount;
    // kVerifyingPartitionType is not set: compatibility C53
    status_.SetSuccess(kGettingDriveLayoutEx);
}

// Does not check can_backup of the partitions: compatibility C144
bool PartitionManagerGPT::can_backup(std::vector<std::wstring>& reasons) const {
    return PartitionManager::can_backup(reasons) && AnyPartitionInUse(reasons);
}

void PartitionManagerGPT::DumpInfo() const {
    Traced(L"bmr_common::PartitionManagerGPT::DumpInfo", [&] {
        PartitionManager::DumpInfo();
        if (layout() == nullptr) {
            return;
        }
        const DRIVE_LAYOUT_INFORMATION_GPT& gpt = layout()->Gpt;
        GetLogger().Write(kLogInformation, L"  Disk Id: %s", GuidText(gpt.DiskId).c_str());
        GetLogger().Write(kLogInformation, L"  Starting Usable Offset: %I64d",
                          gpt.StartingUsableOffset.QuadPart);
        GetLogger().Write(kLogInformation, L"  Usable Length: %I64d", gpt.UsableLength.QuadPart);
        GetLogger().Write(kLogInformation, L"  Usable Max Partition Count: %u", gpt.MaxPartitionCount);
        for (const PartitionPtr& partition : partitions_) {
            partition->DumpInfo();
        }
    });
}

bool PartitionManagerGPT::ExtentIsOnBootablePartition(const std::int64_t& offset,
                                                      const std::int64_t& length) const {
    return IsOnBootablePartition(L"bmr_common::PartitionManagerGPT::ExtentIsOnBootablePartition", offset,
                                 length);
}

std::int64_t PartitionManagerGPT::GetSpaceToEnd(const std::int64_t& offset, const std::int64_t& disk_size,
                                                std::uint32_t alignment) const {
    return LengthBetween(offset, LengthBetween(alignment, disk_size));
}

bool PartitionManagerGPT::GetEnumDiskPartitionVector(const DiskRow& disk,
                                                     std::vector<PartitionRow>& rows) const {
    rows.clear();
    // Logged, but returns true: compatibility C159
    if (disk.size == 0) {
        GetLogger().Write(kLogError, L"%s disk size is 0 no partitions will be visible",
                          L"bmr_common::PartitionManagerGPT::GetEnumDiskPartitionVector");
        return true;
    }
    const std::vector<PartitionPtr> sorted = SortedPartitions();
    rows.reserve(sorted.size() + 2);  // most disks have free space only at the start and the end
    std::int64_t cursor =
        sorted.empty() ? kFirstMegabyte : std::min(sorted.front()->starting_offset(), kFirstMegabyte);
    std::int32_t number = 1;
    for (const PartitionPtr& partition : sorted) {
        if (partition->starting_offset() > cursor) {
            rows.push_back(FreeSpaceRow(cursor, LengthBetween(cursor, partition->starting_offset())));
        }
        const auto gpt = boost::dynamic_pointer_cast<PartitionGPT>(partition);
        if (!gpt) {
            return true;
        }
        rows.push_back(RowOf(*gpt, number++));
        cursor = EndOf(partition->starting_offset(), partition->length());
    }
    const auto disk_size = static_cast<std::int64_t>(disk.size);
    if (cursor < disk_size) {
        rows.push_back(FreeSpaceRow(cursor, LengthBetween(cursor, disk_size)));
    }
    return true;
}

}  // namespace bmr_common
