#include "common/enumdisk/disk_interfaces.h"

#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/platform/disk_drives.h"

#include <map>

void AssignInterfaceTypes(std::vector<DiskRow>& disks) {
    Traced(L"AssignInterfaceTypes", [&] {
        bmr_common::COMEnabler com;
        if (!com.InitializeCOM(L"AssignInterfaceTypes")) {
            return;
        }
        std::map<std::uint32_t, std::wstring> types;
        VisitWmiObjects(kDiskDriveQuery, [&](CWmi& drive) {
            int index = 0;
            std::wstring type;
            if (drive.GetLowInteger(L"Index", index) && index != kNoDiskIndex &&
                drive.Get(L"InterfaceType", type)) {
                types.emplace(static_cast<std::uint32_t>(index), type);
            }
            return true;
        });
        for (DiskRow& disk : disks) {
            const auto found = types.find(disk.disk_number);
            if (found != types.end()) {
                disk.interface_type = found->second;
            }
        }
    });
}
