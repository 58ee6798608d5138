#pragma once

#include "common/disk/disk_drive_manager.h"

namespace bmr_common {

// A disk that is raw, has an unknown partition style, or could not be opened or read. It can never be backed
// up. Most functions log one line at level 2 and return false.
class DiskDriveManagerUnknown : public DiskDriveManager {
public:
    using DiskDriveManager::DiskDriveManager;

    void DumpInfo() const override;
    void Initialize(const UniqueFile& drive, const win::ByteBuffer& geometry) override;
    bool InitializeUsingGeometryOf(const boost::shared_ptr<DiskDriveManager>& source,
                                   const DeviceManager& device_manager) override;
    bool can_backup(std::vector<std::wstring>& reasons) const override;
    bool is_dynamic() const override;
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override;
    std::uint32_t GetPartitionStyle() const override { return kStyleRAW; }
    bool SetupDiskStruct(CREATE_DISK& description) const override;
    const DRIVE_LAYOUT_INFORMATION_EX* GetPartitionLayoutExPtr() const override;
    bool HasPartitionAtOffset(std::int64_t offset) const override;
    void SetUniqueIdToRandom() override;
    bool has_same_unique_id(const DiskDriveManager& other) const override;
    std::uint32_t GetPartitionCount() const override { return 0; }
    bool GetPartitionNumberAtOffset(std::int64_t offset, std::uint32_t& number) const override;
};

}  // namespace bmr_common
