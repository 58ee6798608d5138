// The exports that dump what the library finds to the log.

#include "capture/environment/dll_version.h"
#include "capture/environment/firmware.h"
#include "capture/exports/process_settings.h"
#include "capture/exports/system_dump.h"
#include "capture/grabber/info_grabber_factory.h"
#include "common/disk/device_manager.h"
#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/platform/critical_error_mode.h"
#include "orvane/orvane.h"

namespace {

// The exception boundary of a dump: runs `dump` between its trace lines and logs the error `failure` if it
// throws. No critical error waits for a user meanwhile.
template <class Body>
void DumpSafely(const wchar_t* function, const wchar_t* failure, Body&& dump) {
    const FailCriticalErrors mode;
    Traced(function, [&] {
        try {
            dump();
        } catch (...) {
            GetLogger().Write(kLogError, failure);
        }
    });
}

void DumpSystem() {
    // The collectors initialise COM again: compatibility C65
    bmr_common::COMEnabler com;
    if (!com.InitializeCOM(L"WMIDumpInfo")) {
        GetLogger().Write(kLogError, L"WMIDumpInfo: Cannot initialize COM");
        return;
    }
    SystemSections sections;
    SectionsRead read;
    if (CollectSystemSections(sections, read)) {
        DumpSystemSections(sections, read);
    }
}

void DumpDisks() {
    bmr_common::DeviceManager device_manager;
    // Dumps even if the enumeration fails: compatibility C55
    device_manager.InitializeWithCurrentDisks();
    device_manager.DumpInfo();
}

void DumpVolumes() {
    bmr_common::COMEnabler com;
    if (!com.InitializeCOM(L"VolumeDumpInfo")) {
        GetLogger().Write(kLogError, L"%s failed to initialize COM - cannot determine boot/system volume(s)",
                          L"VolumeDumpInfo");
        return;
    }
    // Ignores the selected format: compatibility C66
    const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(orvane::kGrabberV3);
    if (!grabber) {
        GetLogger().Write(kLogError, L"Failed to obtain information grabber");
        return;
    }
    GetLogger().Write(kLogInformation, L"============ Preparing volume(s) information ============");
    const bool obtained = grabber->ObtainInformation();
    GetLogger().Write(kLogInformation, L"============ Finish preparing volume(s) ============");
    if (!obtained) {
        GetLogger().Write(kLogError, L"Failed to obtain environment information");
        return;
    }
    grabber->DumpVolumeInfo();
    // Twelve equals signs before the words, thirteen after them: compatibility C56
    GetLogger().Write(kLogInformation, L"============ Volume(s) available for backup summary =============");
    GetLogger().Write(kLogInformation, grabber->CanBackup({}, RequestedDisks(), true)
                                           ? L"All volumes can be backed up"
                                           : L"Other volumes can be backed up except volumes with errors");
}

// The lines contain their own line feeds: compatibility C58
void DumpFirmware() {
    GetLogger().Write(kLogInformation, L"Capture DLL Version: %S", kDllVersion);
    GetLogger().Write(kLogInformation, L"==========Firmware Detection==========\n");
    std::uint32_t type = kFirmwareUnknown;
    if (!FindFirmwareType(type)) {
        GetLogger().Write(kLogError, L"Firmware type: Unknown - API failed error=0x%x\n", GetLastError());
        return;
    }
    switch (type) {
        case kFirmwareUnknown:
            GetLogger().Write(kLogInformation, L"Firmware type: Unknown\n");
            break;
        case kFirmwareBios:
            GetLogger().Write(kLogInformation, L"Firmware type: BIOS\n");
            break;
        case kFirmwareUefi:
            GetLogger().Write(kLogInformation, L"Firmware type: UEFI\n");
            break;
        default:
            // Logged as an error: compatibility C59
            GetLogger().Write(kLogError, L"Firmware type: Default Unknown\n");
            break;
    }
}

}  // namespace

void WMIDumpInfo() {
    DumpSafely(L"WMIDumpInfo", L"WMIDumpInfo Exception", DumpSystem);
}

void DiskDumpInfo() {
    DumpSafely(L"DiskDumpInfo", L"DiskDumpInfo Exception", DumpDisks);
}

void VolumeDumpInfo() {
    DumpSafely(L"VolumeDumpInfo", L"VolumeDumpInfo Exception", DumpVolumes);
}

void FirmwareDumpInfo() {
    DumpSafely(L"FirmwareDumpInfo", L"FirmwareDumpInfo Exception", DumpFirmware);
}
