#pragma once

#include "common/disk/disk_geometry.h"
#include "common/disk/operation_status.h"
#include "common/record/rows.h"
#include "common/xml/ms_xml.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {

class DeviceManager;

extern const std::wstring kOpeningDisk;
extern const std::wstring kGettingDriveGeometry;

// The values that GetPartitionStyle returns.
inline constexpr std::uint32_t kStyleMBR = PARTITION_STYLE_MBR;
inline constexpr std::uint32_t kStyleGPT = PARTITION_STYLE_GPT;
inline constexpr std::uint32_t kStyleRAW = PARTITION_STYLE_RAW;

// One physical disk, \\.\PhysicalDriveN. Offsets and lengths are in bytes. Failed queries are recorded in the
// status; only the XML functions throw.
class DiskDriveManager {
public:
    // Seeds the C runtime's random number generator with the current second: compatibility C157
    explicit DiskDriveManager(std::uint32_t disk_index);
    virtual ~DiskDriveManager() = default;
    DiskDriveManager(const DiskDriveManager&) = delete;
    DiskDriveManager& operator=(const DiskDriveManager&) = delete;

    virtual void DumpInfo() const;
    // Appends the disk's elements to `parent`. If the disk cannot be backed up, appends only its id and a
    // size of 0.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    // Stores the geometry and reads the remaining data from the open drive. The caller keeps ownership of the
    // drive. Call only once.
    virtual void Initialize(const UniqueFile& drive, const win::ByteBuffer& geometry) = 0;
    // Prepares this object, not the disk itself, for a new partition table with the geometry of `source`.
    // Call only once.
    virtual bool InitializeUsingGeometryOf(const boost::shared_ptr<DiskDriveManager>& source,
                                           const DeviceManager& device_manager) = 0;
    // Whether the disk can be backed up. If not, appends the reasons.
    virtual bool can_backup(std::vector<std::wstring>& reasons) const;
    virtual bool is_dynamic() const = 0;
    virtual bool ExtentIsOnBootablePartition(const std::int64_t& offset,
                                             const std::int64_t& length) const = 0;
    virtual std::uint32_t GetPartitionStyle() const = 0;
    // Fills in the description used to initialise the disk.
    virtual bool SetupDiskStruct(CREATE_DISK& description) const = 0;
    // Initialises the raw disk `disk_index` with this disk's description. Writes to the disk.
    virtual bool CreateRawDisk(std::uint32_t disk_index) const;
    // Null if the layout was not read. Owned by this object.
    virtual const DRIVE_LAYOUT_INFORMATION_EX* GetPartitionLayoutExPtr() const = 0;
    // Whether a partition in use starts at `offset`.
    virtual bool HasPartitionAtOffset(std::int64_t offset) const = 0;
    virtual void SetUniqueIdToRandom() = 0;
    virtual bool has_same_unique_id(const DiskDriveManager& other) const = 0;
    virtual std::uint32_t GetPartitionCount() const = 0;
    virtual bool GetPartitionNumberAtOffset(std::int64_t offset, std::uint32_t& number) const = 0;
    // Fills in the partition style and the partition rows of a flat row. Requires the row's size to be set
    // and the layout to be read. Returns false and leaves the row unchanged for a kind of disk that has no
    // rows.
    virtual bool FillDiskRow(DiskRow& row) const;

    virtual bool IsFailed(const std::wstring& operation) const { return status_.IsFailed(operation); }
    virtual bool IsSucceeded(const std::wstring& operation) const { return status_.IsSucceeded(operation); }
    virtual std::uint64_t ErrorCount() const { return status_.ErrorCount(); }

    // Gives this disk a unique id that no other disk of the same style has.
    bool AssignUniqueId(const DeviceManager& device_manager);
    // Initialises a raw disk. Writes to the disk.
    static bool InitializeRAWDisk(std::uint32_t disk_index, CREATE_DISK& description);

    std::uint32_t disk_index() const { return disk_index_; }
    const DiskGeometry& geometry() const { return geometry_; }
    OperationStatus& status() { return status_; }

protected:
    // Appends the common elements. Returns false if the disk cannot be backed up; then nothing else may be
    // appended.
    bool CaptureCommonInfo(CMSXmlNode& parent) const;
    // Stores the geometry and records that opening the disk and reading its geometry succeeded.
    void TakeGeometry(DiskGeometry geometry);
    bool has_geometry() const { return status_.IsSucceeded(kGettingDriveGeometry); }

    const std::uint32_t disk_index_;
    OperationStatus status_;
    DiskGeometry geometry_;  // valid only if kGettingDriveGeometry succeeded
};

using DiskDriveManagerPtr = boost::shared_ptr<DiskDriveManager>;

}  // namespace bmr_common
