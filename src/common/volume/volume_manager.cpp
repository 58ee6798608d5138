#include "common/volume/volume_manager.h"

#include "common/logger/trace.h"
#include "common/xml/xml_values.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/make_shared.hpp>

namespace bmr_common {

using boost::algorithm::is_any_of;
using boost::algorithm::trim_left_copy_if;

const std::wstring kFindVolume = L"Find Volume";

VolumeManager::VolumeManager() : status_{kFindVolume} {}

bool VolumeManager::InitializeWithCurrentVolumes(const DeviceManager& disks,
                                                 const std::wstring& system_volume_device,
                                                 const std::wstring& boot_volume_device) {
    constexpr const wchar_t* kFunction = L"bmr_common::VolumeManager::InitializeWithCurrentVolumes";
    return Traced(kFunction, [&] {
        try {
            DeviceNamesMap map;
            std::wstring error;
            if (!GetDeviceNamesMap(map, error)) {
                GetLogger().Write(kLogError, L"%s %s", kFunction,
                                  trim_left_copy_if(error, is_any_of(L" ")).c_str());
                status_.SetError(kFindVolume, error);
                return false;
            }
            CreateVolumes(std::move(map), disks, system_volume_device, boot_volume_device);
            status_.SetSuccess(kFindVolume);
            return true;
        } catch (...) {
            GetLogger().Write(kLogError, L"Exception in %s", kFunction);
            volumes_.clear();
            by_name_.clear();
            if (!status_.IsFailed(kFindVolume)) {
                status_.SetError(kFindVolume, L" exception");
            }
            return false;
        }
    });
}

void VolumeManager::CreateVolumes(DeviceNamesMap map, const DeviceManager& disks,
                                  const std::wstring& system_volume_device,
                                  const std::wstring& boot_volume_device) {
    for (const auto& [device, guid] : map) {
        GetLogger().Write(kLogTrace, L"DeviceName[%s] VolumeGUID[%s]", device.c_str(), guid.c_str());
    }
    volumes_.reserve(map.size());
    while (!map.empty()) {
        auto entry = map.extract(map.begin());
        const auto volume = boost::make_shared<Volume>(std::move(entry.mapped()), std::move(entry.key()));
        volume->Initialize(system_volume_device, boot_volume_device, disks);
        volumes_.push_back(volume);
        // If two volumes have the same name, the first one is found.
        by_name_.try_emplace(volume->volume_guid(), volume);
        by_name_.try_emplace(volume->device_name(), volume);
    }
}

VolumePtr VolumeManager::GetVolume(const std::wstring& guid_or_device) const {
    std::wstring name = guid_or_device;
    // Logs a line for every GUID: compatibility C43
    if (!Volume::ConvertToNormalizedDeviceId(name) && name.find(kVolumeGuidPrefix) == std::wstring::npos) {
        name = kVolumeGuidPrefix + name + L"}";
        name += L'\\';
    }
    const auto found = by_name_.find(name);
    if (found == by_name_.end()) {
        GetLogger().Write(kLogTrace, L"VolumeManager::GetVolume: bad GUID %s, no match",
                          guid_or_device.c_str());
        return {};
    }
    return found->second;
}

VolumePtr VolumeManager::GetVolume(std::uint32_t disk_number, std::int64_t offset) const {
    for (const VolumePtr& volume : volumes_) {
        for (const VolumeExtent& extent : volume->extents()) {
            if (extent.disk_number == disk_number && extent.starting_offset == offset) {
                return volume;
            }
        }
    }
    GetLogger().Write(kLogTrace, L"%s no volume with extent on disk %u offset %I64i",
                      L"bmr_common::VolumeManager::GetVolume", disk_number, offset);
    return {};
}

void VolumeManager::DumpInfo() const {
    Traced(L"bmr_common::VolumeManager::DumpInfo", [&] {
        // No empty line before it: compatibility C57
        GetLogger().Write(kLogInformation, L"[Volume Information]");
        GetLogger().Write(kLogInformation, L"Number of volumes: %I64u", std::uint64_t{volumes_.size()});
        unsigned number = 0;
        for (const VolumePtr& volume : volumes_) {
            GetLogger().Write(kLogInformation, L"Volume #%u", ++number);
            volume->DumpInfo();
        }
    });
}

void VolumeManager::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::VolumeManager::CaptureInfo", [&] {
        CMSXmlNode volume_info = parent.AddChild("VolumeInfo");
        AddNumberElement(volume_info, "NumberOfVolumes", volumes_.size());
        for (const VolumePtr& volume : volumes_) {
            // The element name has no number: compatibility C87
            CMSXmlNode node = volume_info.AddChild("Volume");
            volume->CaptureInfo(node);
        }
    });
}

}  // namespace bmr_common
