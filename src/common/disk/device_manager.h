#pragma once

#include "common/disk/disk_drive_manager_factory.h"

#include <map>

namespace bmr_common {

// The machine's physical disks, sorted by the text of their index: compatibility C85
class DeviceManager {
public:
    DeviceManager() = default;
    virtual ~DeviceManager() = default;
    DeviceManager(const DeviceManager&) = delete;
    DeviceManager& operator=(const DeviceManager&) = delete;

    // Replaces the disks with those of the live system. Never throws. On failure logs at level 2 and returns
    // false.
    virtual bool InitializeWithCurrentDisks();
    // Creates the factory used for all later disks.
    virtual void CreateFactory();
    virtual void DumpInfo() const;
    // Appends the element "DeviceInfo" to `parent`; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    // Adds the indexes of the disks that WMI lists, without creating the disk objects.
    virtual bool ObtainPhysicalDrivesIndexes();

    // The disk with that index. Returns an empty pointer, after logging one line at level 5, if there is
    // none.
    DiskDriveManagerPtr GetDevice(std::uint32_t disk_index) const;
    // Appends all disks with that partition style.
    void GetDisks(std::uint32_t style, std::vector<DiskDriveManagerPtr>& disks) const;

    // The key is the decimal index. A pointer may be empty.
    using DiskMap = std::map<std::wstring, DiskDriveManagerPtr>;
    const DiskMap& disks() const { return disks_; }

protected:
    DiskMap disks_;
    boost::shared_ptr<DiskDriveManagerFactory> factory_;

private:
    bool ReadIndexes();
};

}  // namespace bmr_common
