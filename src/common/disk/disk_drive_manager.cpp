#include "common/disk/disk_drive_manager.h"

#include "common/disk/device_manager.h"
#include "common/logger/trace.h"
#include "common/text/decimal_text.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace bmr_common {

const std::wstring kOpeningDisk = L"Opening Disk";
const std::wstring kGettingDriveGeometry = L"Getting Drive Geometry";

namespace {

constexpr int kUniqueIdRounds = 100;

}  // namespace

DiskDriveManager::DiskDriveManager(std::uint32_t disk_index)
    : disk_index_(disk_index), status_{kOpeningDisk, kGettingDriveGeometry} {
    std::srand(static_cast<unsigned>(_time64(nullptr)));
}

void DiskDriveManager::TakeGeometry(DiskGeometry geometry) {
    status_.SetSuccess(kOpeningDisk);
    status_.SetSuccess(kGettingDriveGeometry);
    geometry_ = std::move(geometry);
}

bool DiskDriveManager::can_backup(std::vector<std::wstring>& reasons) const {
    status_.GetErrors(reasons);
    return !status_.HasErrors();
}

bool DiskDriveManager::AssignUniqueId(const DeviceManager& device_manager) {
    std::vector<DiskDriveManagerPtr> disks;
    device_manager.GetDisks(GetPartitionStyle(), disks);
    const auto collides = [&] {
        return std::any_of(disks.begin(), disks.end(), [&](const DiskDriveManagerPtr& disk) {
            return disk.get() != this && has_same_unique_id(*disk);
        });
    };
    for (int round = 0; round < kUniqueIdRounds; ++round) {
        SetUniqueIdToRandom();
        if (!collides()) {
            return true;
        }
    }
    GetLogger().Write(kLogError, L"%s Failed to get unique disk signature",
                      L"bmr_common::DiskDriveManager::AssignUniqueId");
    return false;
}

bool DiskDriveManager::FillDiskRow(DiskRow& /*row*/) const {
    return false;
}

bool DiskDriveManager::CreateRawDisk(std::uint32_t disk_index) const {
    CREATE_DISK description{};
    if (!SetupDiskStruct(description)) {
        // Logs part of the address of the text instead of the index: compatibility C22
        const std::wstring index = DecimalText(disk_index);
        GetLogger().Write(kLogError, L"%s failed for disk %u", L"bmr_common::DiskDriveManager::CreateRawDisk",
                          index.c_str());
        return false;
    }
    return InitializeRAWDisk(disk_index, description);
}

bool DiskDriveManager::InitializeRAWDisk(std::uint32_t disk_index, CREATE_DISK& description) {
    constexpr const wchar_t* kFunction = L"bmr_common::DiskDriveManager::InitializeRAWDisk";
    const std::wstring index = DecimalText(disk_index);
    DWORD error = 0;
    UniqueFile drive;
    if (!win::WinAPIWrapper::OpenPhysicalDrive(disk_index, GENERIC_READ | GENERIC_WRITE, &drive, error)) {
        GetLogger().Write(kLogError, L"%s OpenPhysicalDrive disk %s error=%u", kFunction, index.c_str(),
                          error);
        return false;
    }
    if (!win::WinAPIWrapper::CreateDisk(drive, description, error)) {
        GetLogger().Write(kLogError, L"%s IOCTL_DISK_CREATE_DISK disk %s error=%u", kFunction, index.c_str(),
                          error);
        return false;
    }
    if (!win::WinAPIWrapper::UpdateDiskProperties(drive, error)) {
        return false;
    }
    // ERROR_INVALID_FUNCTION: the device does not support flushing, so nothing needs to be flushed.
    if (!win::WinAPIWrapper::FlushFileBuffers(drive, error) && error != ERROR_INVALID_FUNCTION) {
        GetLogger().Write(kLogError, L"%s error=%u", kFunction, error);
        return false;
    }
    return true;
}

}  // namespace bmr_common
