#include "common/disk/disk_drive_manager_factory.h"

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "common/logger/trace.h"
#include "common/text/decimal_text.h"

#include <boost/make_shared.hpp>

namespace bmr_common {

DiskDriveManagerPtr DiskDriveManagerFactory::CreateUnknown(std::uint32_t disk_index) const {
    return boost::make_shared<DiskDriveManagerUnknown>(disk_index);
}

DiskDriveManagerPtr DiskDriveManagerFactory::CreateMBR(std::uint32_t disk_index) const {
    return boost::make_shared<DiskDriveManagerMBR>(disk_index);
}

DiskDriveManagerPtr DiskDriveManagerFactory::CreateGPT(std::uint32_t disk_index) const {
    return boost::make_shared<DiskDriveManagerGPT>(disk_index);
}

DiskDriveManagerPtr DiskDriveManagerFactory::CreateFor(std::uint32_t disk_index,
                                                       const DiskGeometry& geometry) const {
    const std::uint32_t style = geometry.partition_style();
    if (style == kStyleGPT) {
        return CreateGPT(disk_index);
    }
    // An MBR disk without a signature is treated as unknown: compatibility C143
    return style == kStyleMBR && geometry.signature() != 0 ? CreateMBR(disk_index)
                                                           : CreateUnknown(disk_index);
}

DiskDriveManagerPtr DiskDriveManagerFactory::CreateAndInitialize(std::uint32_t disk_index) const {
    const std::wstring index = DecimalText(disk_index);
    DWORD error = 0;
    UniqueFile drive;
    if (!win::WinAPIWrapper::OpenPhysicalDrive(disk_index, 0, &drive, error)) {
        DiskDriveManagerPtr disk = CreateUnknown(disk_index);
        disk->status().SetError(kOpeningDisk,
                                L"Failed to open hard disk " + index + L" error: " + DecimalText(error));
        return disk;
    }
    win::ByteBuffer geometry;
    if (!win::WinAPIWrapper::GetDriveGeometryEx(drive, disk_index, geometry, error)) {
        DiskDriveManagerPtr disk = CreateUnknown(disk_index);
        disk->status().SetSuccess(kOpeningDisk);
        disk->status().SetError(kGettingDriveGeometry, L"Failed to GetDriveGeometryEx for disk " + index +
                                                           L" error: " + DecimalText(error));
        return disk;
    }
    DiskDriveManagerPtr disk = CreateFor(disk_index, DiskGeometry(geometry));
    disk->Initialize(drive, geometry);
    return disk;
}

}  // namespace bmr_common
