#pragma once

#include "common/disk/disk_drive_manager_factory.h"

#include <map>

namespace bmr_common {

// The machine's physical disks, ordered by the text of their index: compatibility C85
class DeviceManager {
public:
    DeviceManager() = default;
    virtual ~DeviceManager() = default;
    DeviceManager(const DeviceManager&) = delete;
    DeviceManager& operator=(const DeviceManager&) = delete;

    // Replaces the disks by those that the live system has. Throws nothing; false after one level 2 line.
    virtual bool InitializeWithCurrentDisks();
    // Makes the factory that later disks come from.
    virtual void CreateFactory();
    virtual void DumpInfo() const;
    // Appends the element "DeviceInfo" to `parent`; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    // Fills in which disks there are, as the system's management information tells, without the disks
    // themselves.
    virtual bool ObtainPhysicalDrivesIndexes();

    // The disk of that index; empty, after a level 5 line, when there is none.
    DiskDriveManagerPtr GetDevice(std::uint32_t disk_index) const;
    // Appends the disks of one partition style.
    void GetDisks(std::uint32_t style, std::vector<DiskDriveManagerPtr>& disks) const;

    using DiskMap = std::map<std::wstring, DiskDriveManagerPtr>;  // by decimal index; a disk may be empty
    const DiskMap& disks() const { return disks_; }

protected:
    DiskMap disks_;
    boost::shared_ptr<DiskDriveManagerFactory> factory_;

private:
    bool ReadIndexes();
};

}  // namespace bmr_common
