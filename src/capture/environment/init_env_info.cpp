#include "capture/environment/init_env_info.h"

#include "capture/environment/boot_volumes.h"
#include "capture/environment/system_information.h"
#include "common/enumdisk/disk_interfaces.h"
#include "common/enumdisk/enum_disk.h"
#include "common/enumdisk/fixed_volumes.h"
#include "common/logger/trace.h"

namespace {

// Not the number of the format: compatibility C71
constexpr std::uint32_t kRecordVersion = 3;

int Failed() {
    GetLogger().Write(kLogError, L"InitEnvInfo Failed");
    return 0;
}

// The number of the first row that starts where the volume starts; 0 where no row does.
std::int32_t GetPartitionNumber(const std::vector<DiskRow>& disks, const ::Volume& volume) {
    return Traced(L"GetPartitionNumber", [&] {
        for (const DiskRow& disk : disks) {
            if (disk.disk_number != volume.m_DiskNumber) {
                continue;
            }
            for (const PartitionRow& row : disk.partitions) {
                if (static_cast<std::uint64_t>(row.offset) == volume.m_offsetPartition) {
                    return row.partition_number;
                }
            }
        }
        return 0;
    });
}

int RepairPartitionNumbers(EnvInfo& environment) {
    for (::Volume& volume : environment.VolumeTable) {
        if (volume.Dynamic) {
            continue;
        }
        const std::int32_t number = GetPartitionNumber(environment.DiskDrives, volume);
        // The row of a whole disk too: compatibility C142
        if (number == 0) {
            GetLogger().Write(kLogError, L"InitEnvInfo failed to fix volume %s partition number",
                              volume.VolumeLetter.c_str());
            return 0;
        }
        // The line has the number of a fault report; extents stay: compatibility C16, C111
        if (number != volume.m_PartitionNumber) {
            GetLogger().Write(
                kLogTrace, L"DTS 19963 InitEnvInfo changing partition number from %d to %d for volume %s %s",
                volume.m_PartitionNumber, number, volume.VolumeLetter.c_str(), volume.Name.c_str());
            volume.m_PartitionNumber = number;
        }
    }
    return 1;
}

}  // namespace

int InitEnvInfo(EnvInfo& environment) {
    SectionsRead read;
    if (!CollectSystemSections(environment, read) || !read.all() ||
        !getFixedVolumes(environment.VolumeTable)) {
        return Failed();
    }
    SortVolumeTable(environment.VolumeTable);
    if (FindBootAndSystemVolumes(environment.VolumeTable, environment.DriveLetterTable,
                                 environment.BootConfig, environment.OS) == 0) {
        return Failed();
    }
    environment.Version = kRecordVersion;
    environment.DllVersion = std::wstring(kDllVersion) + L".";
    EnumDisk enumerator;
    std::vector<DriveRow> drives;
    // No "InitEnvInfo Failed" from here on: compatibility C42
    if (enumerator.GetDrives(drives) == 0 ||
        enumerator.GetDiskDetails(&drives, environment.DiskDrives) == 0) {
        return 0;
    }
    AssignInterfaceTypes(environment.DiskDrives);
    return RepairPartitionNumbers(environment);
}
