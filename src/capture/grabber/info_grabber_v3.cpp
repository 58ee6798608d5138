#include "capture/grabber/info_grabber_v3.h"

#include "capture/document/document_text.h"
#include "capture/document/environment_document.h"
#include "capture/environment/dll_version.h"
#include "capture/environment/system_information.h"
#include "capture/grabber/document_buffer.h"
#include "capture/grabber/grabber_exception.h"
#include "common/logger/trace.h"
#include "common/platform/guid.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

// Not the format number: compatibility C71
constexpr std::uint32_t kRecordVersion = 7;

}  // namespace

InfoGrabberV3::InfoGrabberV3() : environment_(boost::make_shared<EnvInfoV3>()) {}

InfoGrabberV3::InfoGrabberV3(boost::shared_ptr<EnvInfoV3> environment)
    : environment_(std::move(environment)) {}

bool InfoGrabberV3::ObtainInformation() {
    return Traced(L"orvane::InfoGrabberV3::ObtainInformation", [&] { return Collect(); });
}

bool InfoGrabberV3::Collect() {
    environment_->Version = kRecordVersion;
    environment_->DllVersion = RecordedDllVersion();
    return GetWMIInfo(*environment_) && environment_->device_manager.InitializeWithCurrentDisks() &&
           environment_->volume_manager.InitializeWithCurrentVolumes(
               environment_->device_manager, environment_->OS.SystemDevice, environment_->OS.BootDevice) &&
           SetVolumeInfoGUID();
}

// Creates GUIDs and discards them: compatibility C122
bool InfoGrabberV3::SetVolumeInfoGUID() const {
    return Traced(L"orvane::InfoGrabberV3::SetVolumeInfoGUID", [&] {
        const auto& volumes = environment_->volume_manager.volumes();
        return std::all_of(volumes.begin(), volumes.end(), [](const bmr_common::VolumePtr&) {
            GUID guid{};
            return CreateGuid(guid);
        });
    });
}

bool InfoGrabberV3::CanBackup(const std::vector<std::wstring>& volumes,
                              const std::vector<RequestedDisk>& disks, bool all_volumes) {
    return CanBackup(volumes, disks, environment_->volume_manager, environment_->device_manager, all_volumes);
}

boost::shared_ptr<EnvInfo> InfoGrabberV3::GetEnvInfo() {
    return {};
}

void InfoGrabberV3::DumpVolumeInfo() {
    Traced(L"orvane::InfoGrabberV3::DumpVolumeInfo", [&] { environment_->volume_manager.DumpInfo(); });
}

void InfoGrabberV3::CaptureInfo(std::uint32_t buffer_size, char* buffer, std::uint32_t* required_size,
                                std::uint32_t* status) {
    TracedToTheEnd(L"orvane::InfoGrabberV3::CaptureInfo", [&] {
        if (!environment_) {
            throw GrabberException(L"InfoGrabberV3::CaptureInfo: Cannot get BMREnvInfoV3");
        }
        // Needs COM initialised by the caller: compatibility C120
        CMSXmlDoc document;
        CMSXmlNode root = NewDocument(document);
        WriteEnvironment(root, *environment_);
        // Delivers an empty text too: compatibility C121
        CopyDocument(DocumentText(root), buffer_size, buffer, required_size, status);
    });
}

}  // namespace orvane
