#pragma once

#include "capture/grabber/info_grabber.h"
#include "capture/grabber/named_volumes.h"

namespace orvane {

// Format 2, the default: converts the disk model to the flat record.
class InfoGrabberV2 : public InfoGrabber {
public:
    InfoGrabberV2();

    using InfoGrabber::CanBackup;

    bool ObtainInformation() override;
    bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                   bool all_volumes) override;
    boost::shared_ptr<EnvInfo> GetEnvInfo() override;
    void DumpVolumeInfo() override;

private:
    bool Collect();
    bool ConvertObtainedInformation();
    bool SetVolumeInfoGUID(std::vector<NamedVolume>& volumes) const;
    bool AddVolumeInfo(const NamedVolume& named_volume);
    bool FillExtent(const bmr_common::VolumeExtent& extent, DiskExtent& row) const;
    bool AddDiskInformation();
    bool AddDiskRow(std::uint32_t disk_number);
    bool AddVolumeInformationToPartitions();
    bool SetVolumePartitionNumbers();
    bool SetBasicVolumesPartitionNumber();
    bool SetBasicVolumePartitionNumber(::Volume& volume) const;

    boost::shared_ptr<EnvInfo> environment_;
    boost::shared_ptr<bmr_common::DeviceManager> device_manager_;
    boost::shared_ptr<bmr_common::VolumeManager> volume_manager_;
};

}  // namespace orvane
