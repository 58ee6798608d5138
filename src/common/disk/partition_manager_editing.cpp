// The partition manager: free space calculation, and writing tables to the disk.

#include "common/disk/partition_manager.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/device_control.h"
#include "common/text/byte_range.h"
#include "common/text/decimal_text.h"

#include <algorithm>

namespace bmr_common {

std::int64_t PartitionManager::GetSpaceToEnd(const std::int64_t& offset, const std::int64_t& disk_size,
                                             std::uint32_t /*alignment*/) const {
    return LengthBetween(offset, disk_size);
}

bool PartitionManager::GetNextPartitionAfter(std::int64_t offset, std::int64_t& next) const {
    const std::vector<PartitionPtr> sorted = SortedPartitions();
    const auto found = std::find_if(sorted.begin(), sorted.end(), [&](const PartitionPtr& partition) {
        return partition->starting_offset() > offset;
    });
    if (found == sorted.end()) {
        return false;
    }
    next = (*found)->starting_offset();
    return true;
}

bool PartitionManager::IsUsableAlignment(const wchar_t* function, std::uint32_t alignment) {
    if (alignment == 0) {
        GetLogger().Write(kLogError, L"%s the alignment is 0", function);
    }
    return alignment != 0;
}

std::int64_t PartitionManager::GetMaximumPartitionSize(std::int64_t offset, std::int64_t disk_size,
                                                       std::uint32_t alignment) const {
    constexpr const wchar_t* kFunction = L"bmr_common::PartitionManager::GetMaximumPartitionSize";
    if (offset >= disk_size) {
        // Misspelled on purpose: compatibility C24
        GetLogger().Write(kLogError, L"%s Disk offset %I64i larger that disk size %I64i", kFunction, offset,
                          disk_size);
        return 0;
    }
    if (!IsUsableAlignment(kFunction, alignment)) {
        return 0;
    }
    std::int64_t next = 0;
    const std::int64_t size = GetNextPartitionAfter(offset, next)
                                  ? LengthBetween(offset, next)
                                  : GetSpaceToEnd(offset, disk_size, alignment);
    return size - size % std::int64_t{alignment};
}

bool PartitionManager::PartitionCorrectlyAligned(std::int64_t start, std::int64_t length,
                                                 std::uint32_t alignment) {
    constexpr const wchar_t* kFunction = L"bmr_common::PartitionManager::PartitionCorrectlyAligned";
    if (!IsUsableAlignment(kFunction, alignment)) {
        return false;
    }
    if (start % std::int64_t{alignment} != 0) {
        // Ends in a blank: compatibility C25
        GetLogger().Write(kLogError, L"%s partition's starting_offset %I64i not aligned on %u boundary ",
                          kFunction, start, alignment);
        return false;
    }
    const std::int64_t end = EndOf(start, length);
    if (end % std::int64_t{alignment} != 0) {
        GetLogger().Write(kLogError, L"%s partition's end %I64i not aligned on %u boundary", kFunction, end,
                          alignment);
        return false;
    }
    return true;
}

bool PartitionManager::WritePartitionTableToDisk(win::ByteBuffer& layout) const {
    constexpr const wchar_t* kFunction = L"bmr_common::PartitionManager::WritePartitionTableToDisk";
    if (!win::IsWholeLayoutEx(layout)) {
        GetLogger().Write(kLogError, L"%s the layout of disk %u is not whole", kFunction, disk_index_);
        return false;
    }
    DRIVE_LAYOUT_INFORMATION_EX& table = *LayoutIn(layout);
    for (DWORD i = 0; i < table.PartitionCount; ++i) {
        table.PartitionEntry[i].RewritePartition = TRUE;
    }
    const std::wstring index = DecimalText(disk_index_);
    DWORD error = 0;
    UniqueFile drive;
    if (!win::WinAPIWrapper::OpenPhysicalDrive(disk_index_, GENERIC_READ | GENERIC_WRITE, &drive, error)) {
        GetLogger().Write(kLogError, L"%s OpenPhysicalDrive disk %s error=%u", kFunction, index.c_str(),
                          error);
        return false;
    }
    if (!win::WinAPIWrapper::SetDriveLayoutEx(drive, disk_index_, layout, error)) {
        return false;
    }
    if (!win::WinAPIWrapper::UpdateDiskProperties(drive, error)) {
        GetLogger().Write(kLogError, L"%s IOCTL_DISK_UPDATE_PROPERTIES disk %s error=%u", kFunction,
                          index.c_str(), error);
        return false;
    }
    // ERROR_INVALID_FUNCTION: the device does not support flushing, so nothing needs to be flushed.
    if (!win::WinAPIWrapper::FlushFileBuffers(drive, error) && error != ERROR_INVALID_FUNCTION) {
        GetLogger().Write(kLogError, L"%s FlushFileBuffers error=%u", kFunction, error);
        return false;
    }
    return true;
}

}  // namespace bmr_common
