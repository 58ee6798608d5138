#pragma once

#include "common/platform/win_api_wrapper.h"
#include "common/windows.h"

#include <cstdint>

namespace bmr_common {

// A disk's extended geometry as the driver returned it: the geometry, the partition record and, directly
// after it, the detection record. Missing bytes read as zero. Sizes are in bytes.
class DiskGeometry {
public:
    DiskGeometry() : DiskGeometry(win::ByteBuffer()) {}
    explicit DiskGeometry(win::ByteBuffer bytes);

    // A copy of this geometry for a new, empty partition table of `style`.
    DiskGeometry ForFreshTable(std::uint32_t style) const;

    const DISK_GEOMETRY& geometry() const;
    std::int64_t disk_size() const;
    std::uint32_t media_type() const;

    std::uint32_t partition_style() const;
    std::uint32_t signature() const;
    const GUID& disk_id() const;
    void SetSignature(std::uint32_t signature);
    void SetDiskId(const GUID& disk_id);

    DISK_DETECTION_INFO detection() const;
    std::uint32_t detection_type() const;

    const win::ByteBuffer& bytes() const { return bytes_; }

private:
    const DISK_GEOMETRY_EX& header() const;
    const DISK_PARTITION_INFO& partition_information() const;
    DISK_PARTITION_INFO& partition_information();

    win::ByteBuffer bytes_;
};

}  // namespace bmr_common
