#include "common/disk/disk_drive_manager_unknown.h"

#include "common/logger/trace.h"
#include "common/text/decimal_text.h"

namespace bmr_common {

namespace {

bool NotImplemented(const wchar_t* function) {
    GetLogger().Write(kLogError, L"%s not implemented for this disk type.", function);
    return false;
}

}  // namespace

void DiskDriveManagerUnknown::DumpInfo() const {
    Traced(L"bmr_common::DiskDriveManagerUnknown::DumpInfo", [&] {
        DiskDriveManager::DumpInfo();
        if (has_geometry()) {
            if (geometry_.partition_style() == kStyleRAW) {
                GetLogger().Write(kLogInformation, L"  Partition Style: RAW");
            } else {
                GetLogger().Write(kLogInformation, L"  Partition Style: UNKNOWN (%d)",
                                  geometry_.partition_style());
            }
        }
        // Logged even for a disk that could not be opened or read: compatibility C49
        GetLogger().Write(kLogInformation, L"The application does not support this partition style.");
    });
}

void DiskDriveManagerUnknown::Initialize(const UniqueFile& /*drive*/, const win::ByteBuffer& geometry) {
    TakeGeometry(DiskGeometry(geometry));
}

bool DiskDriveManagerUnknown::can_backup(std::vector<std::wstring>& reasons) const {
    if (DiskDriveManager::can_backup(reasons)) {
        reasons.push_back(L"Unknown disk partition style " + DecimalText(geometry_.partition_style()));
    }
    return false;
}

bool DiskDriveManagerUnknown::InitializeUsingGeometryOf(const boost::shared_ptr<DiskDriveManager>& /*source*/,
                                                        const DeviceManager& /*device_manager*/) {
    return NotImplemented(L"bmr_common::DiskDriveManagerUnknown::InitializeUsingGeometryOf");
}

bool DiskDriveManagerUnknown::is_dynamic() const {
    return NotImplemented(L"bmr_common::DiskDriveManagerUnknown::is_dynamic");
}

bool DiskDriveManagerUnknown::ExtentIsOnBootablePartition(const std::int64_t& /*offset*/,
                                                          const std::int64_t& /*length*/) const {
    return NotImplemented(L"bmr_common::DiskDriveManagerUnknown::ExtentIsOnBootablePartition");
}

bool DiskDriveManagerUnknown::SetupDiskStruct(CREATE_DISK& /*description*/) const {
    return NotImplemented(L"bmr_common::DiskDriveManagerUnknown::SetupDiskStruct");
}

const DRIVE_LAYOUT_INFORMATION_EX* DiskDriveManagerUnknown::GetPartitionLayoutExPtr() const {
    NotImplemented(L"bmr_common::DiskDriveManagerUnknown::GetPartitionLayoutExPtr");
    return nullptr;
}

bool DiskDriveManagerUnknown::HasPartitionAtOffset(std::int64_t /*offset*/) const {
    return false;
}

void DiskDriveManagerUnknown::SetUniqueIdToRandom() {
    NotImplemented(L"bmr_common::DiskDriveManagerUnknown::SetUniqueIdToRandom");
}

bool DiskDriveManagerUnknown::has_same_unique_id(const DiskDriveManager& /*other*/) const {
    return NotImplemented(L"bmr_common::DiskDriveManagerUnknown::has_same_unique_id");
}

bool DiskDriveManagerUnknown::GetPartitionNumberAtOffset(std::int64_t /*offset*/,
                                                         std::uint32_t& /*number*/) const {
    return false;
}

}  // namespace bmr_common
