#include "capture/environment/init_env_info.h"

#include "capture/environment/boot_volumes.h"
#include "capture/environment/dll_version.h"
#include "capture/environment/system_information.h"
#include "common/enumdisk/disk_interfaces.h"
#include "common/enumdisk/enum_disk.h"
#include "common/enumdisk/fixed_volumes.h"
#include "common/logger/trace.h"
#include "common/record/find_rows.h"

namespace {

// Not the format number: compatibility C71
constexpr std::uint32_t kRecordVersion = 3;

bool Failed() {
    GetLogger().Write(kLogError, L"InitEnvInfo Failed");
    return false;
}

// Returns the number of the first partition row that starts at the volume's offset; 0 if there is none.
std::int32_t GetPartitionNumber(const std::vector<DiskRow>& disks, const ::Volume& volume) {
    return Traced(L"GetPartitionNumber", [&] {
        const PartitionRow* const row = FindRowAt(disks, volume.m_DiskNumber, volume.m_offsetPartition);
        return row != nullptr ? row->partition_number : 0;
    });
}

bool RepairPartitionNumbers(EnvInfo& environment) {
    for (::Volume& volume : environment.VolumeTable) {
        if (volume.Dynamic) {
            continue;
        }
        const std::int32_t number = GetPartitionNumber(environment.DiskDrives, volume);
        // The row of a whole disk has the number 0 too: compatibility C142
        if (number == 0) {
            GetLogger().Write(kLogError, L"InitEnvInfo failed to fix volume %s partition number",
                              volume.VolumeLetter.c_str());
            return false;
        }
        // The line contains the number of a fault report, and the extents do not change: compatibility C16,
        // C111
        if (number != volume.m_PartitionNumber) {
            GetLogger().Write(
                kLogTrace, L"DTS 19963 InitEnvInfo changing partition number from %d to %d for volume %s %s",
                volume.m_PartitionNumber, number, volume.VolumeLetter.c_str(), volume.Name.c_str());
            volume.m_PartitionNumber = number;
        }
    }
    return true;
}

}  // namespace

bool InitEnvInfo(EnvInfo& environment) {
    SectionsRead read;
    if (!CollectSystemSections(environment, read) || !read.all() ||
        !getFixedVolumes(environment.VolumeTable)) {
        return Failed();
    }
    SortVolumeTable(environment.VolumeTable);
    if (!FindBootAndSystemVolumes(environment.VolumeTable, environment.DriveLetterTable,
                                  environment.BootConfig, environment.OS)) {
        return Failed();
    }
    environment.Version = kRecordVersion;
    environment.DllVersion = RecordedDllVersion();
    EnumDisk enumerator;
    std::vector<DriveRow> drives;
    // From here on, a failure does not log "InitEnvInfo Failed": compatibility C42
    if (!enumerator.GetDrives(drives) || !enumerator.GetDiskDetails(&drives, environment.DiskDrives)) {
        return false;
    }
    AssignInterfaceTypes(environment.DiskDrives);
    return RepairPartitionNumbers(environment);
}
