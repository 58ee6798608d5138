#pragma once

#include "common/windows.h"
#include "common/xml/ms_xml.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {

// One entry of a physical disk's partition table, as reported in the driver's extended layout. Offsets and
// lengths are in bytes.
class Partition {
public:
    // All fields are zero, except the style, which is raw until Initialize.
    Partition();
    virtual ~Partition() = default;
    Partition(const Partition&) = delete;
    Partition& operator=(const Partition&) = delete;

    // Copies the whole entry.
    virtual void Initialize(const PARTITION_INFORMATION_EX& entry);
    // Whether the partition can be backed up. If not, appends and logs one reason.
    virtual bool can_backup(std::vector<std::wstring>& reasons) const = 0;
    virtual void DumpInfo() const;
    // Appends the partition's elements to `parent`; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    virtual bool is_dynamic() const = 0;
    virtual bool is_unused() const = 0;
    // Whether the partition contains the whole extent. A partial overlap is logged and returns false.
    virtual bool contains_extent(const std::int64_t& offset, const std::int64_t& length) const;
    // Whether the extent and the partition share at least one byte or start at the same offset, or the extent
    // is empty and inside the partition. Unused entries can overlap too: compatibility C150, C149
    virtual bool IsExtentOverlapped(const std::int64_t& offset, const std::int64_t& length) const;
    virtual bool is_bootable() const = 0;

    const PARTITION_INFORMATION_EX& entry() const { return entry_; }
    std::int64_t starting_offset() const { return entry_.StartingOffset.QuadPart; }
    std::int64_t length() const { return entry_.PartitionLength.QuadPart; }
    // The raw number of the style, which may be unknown to the platform's headers.
    std::uint32_t style() const;

    // For editing a table in memory.
    void set_length(std::int64_t length) { entry_.PartitionLength.QuadPart = length; }

protected:
    PARTITION_INFORMATION_EX entry_{};
};

}  // namespace bmr_common
