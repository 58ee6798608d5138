#pragma once

#include "common/windows.h"
#include "common/xml/ms_xml.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {

// One entry of a physical disk's partition table, as the driver's extended layout reports it. Offsets and
// lengths are in bytes.
class Partition {
public:
    // All zero but for its style, which is raw until Initialize.
    Partition();
    virtual ~Partition() = default;
    Partition(const Partition&) = delete;
    Partition& operator=(const Partition&) = delete;

    // Takes a copy of the whole entry.
    virtual void Initialize(const PARTITION_INFORMATION_EX& entry);
    // Whether the partition may be backed up; when not, appends one reason and logs it.
    virtual bool can_backup(std::vector<std::wstring>& reasons) const = 0;
    virtual void DumpInfo() const;
    // Appends the partition's elements to `parent`; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    virtual bool is_dynamic() const = 0;
    virtual bool is_unused() const = 0;
    // Whether the partition wholly contains the extent. A partial overlap is logged and is no containment.
    virtual bool contains_extent(const std::int64_t& offset, const std::int64_t& length) const;
    // Whether the two share at least one byte, or start at the same one, or the extent is empty and inside;
    // of an unused entry too: compatibility C150, C149
    virtual bool IsExtentOverlapped(const std::int64_t& offset, const std::int64_t& length) const;
    virtual bool is_bootable() const = 0;

    const PARTITION_INFORMATION_EX& entry() const { return entry_; }
    std::int64_t starting_offset() const { return entry_.StartingOffset.QuadPart; }
    std::int64_t length() const { return entry_.PartitionLength.QuadPart; }
    // The style's number as it stands, also one that the platform's headers do not know.
    std::uint32_t style() const;

    // For the in-memory editing of a table.
    void set_length(std::int64_t length) { entry_.PartitionLength.QuadPart = length; }

protected:
    PARTITION_INFORMATION_EX entry_{};
};

}  // namespace bmr_common
