#include "common/enumdisk/disk_interfaces.h"

#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/platform/wmi.h"

#include <map>

namespace {

constexpr int kNoIndex = 255;  // what a drive without a physical disk number is listed under

}  // namespace

void AssignInterfaceTypes(std::vector<DiskRow>& disks) {
    Traced(L"AssignInterfaceTypes", [&] {
        bmr_common::COMEnabler com;
        if (!com.InitializeCOM(L"AssignInterfaceTypes")) {
            return;
        }
        CWmi wmi(L"Select * from Win32_DiskDrive");
        std::map<std::uint32_t, std::wstring> types;
        for (bool more = wmi.FindFirstObject(); more; more = wmi.FindNextObject()) {
            int index = 0;
            std::wstring type;
            if (wmi.GetLowInteger(L"Index", index) && index != kNoIndex && wmi.Get(L"InterfaceType", type)) {
                types.emplace(static_cast<std::uint32_t>(index), type);
            }
        }
        for (DiskRow& disk : disks) {
            const auto found = types.find(disk.disk_number);
            if (found != types.end()) {
                disk.interface_type = found->second;
            }
        }
    });
}
