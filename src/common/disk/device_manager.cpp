#include "common/disk/device_manager.h"

#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/platform/disk_drives.h"
#include "common/text/decimal_text.h"
#include "common/xml/xml_values.h"

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

namespace bmr_common {

void DeviceManager::CreateFactory() {
    factory_ = boost::make_shared<DiskDriveManagerFactory>();
}

bool DeviceManager::ObtainPhysicalDrivesIndexes() {
    return Traced(L"bmr_common::DeviceManager::ObtainPhysicalDrivesIndexes", [&] {
        try {
            return ReadIndexes();
        } catch (...) {
            GetLogger().Write(kLogError, L"DeviceManager::ObtainPhysicalDrivesIndexes exception");
            disks_.clear();
            return false;
        }
    });
}

bool DeviceManager::ReadIndexes() {
    COMEnabler com;
    if (!com.InitializeCOM(L"DeviceManager::ObtainPhysicalDrivesIndexes")) {
        return false;
    }
    const WmiVisit visit = VisitWmiObjects(kDiskDriveQuery, [&](CWmi& drive) {
        int index = 0;
        if (!drive.Get(L"Index", index)) {
            // The indexes read so far are kept: compatibility C54
            GetLogger().Write(kLogError, L"DeviceManager::ObtainPhysicalDrivesIndexes wmi.Get failed");
            return false;
        }
        if (index != kNoDiskIndex) {
            disks_.try_emplace(DecimalText(static_cast<std::uint32_t>(index)));
        }
        return true;
    });
    if (visit == WmiVisit::kNotConnected) {
        GetLogger().Write(kLogError, L"DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized");
    }
    if (visit == WmiVisit::kNoneFound) {
        GetLogger().Write(kLogError, L"DeviceManager::ObtainPhysicalDrivesIndexes FindFirstObject failed");
    }
    return visit == WmiVisit::kAllVisited;
}

bool DeviceManager::InitializeWithCurrentDisks() {
    return Traced(L"bmr_common::DeviceManager::InitializeWithCurrentDisks", [&] {
        try {
            disks_.clear();
            if (!ObtainPhysicalDrivesIndexes()) {
                return false;
            }
            if (!factory_) {
                CreateFactory();
            }
            for (auto& [index, disk] : disks_) {
                disk = factory_->CreateAndInitialize(boost::lexical_cast<std::uint32_t>(index));
            }
            return true;
        } catch (...) {
            GetLogger().Write(kLogError, L"Exception in DeviceManager::InitializeWithCurrentDisks");
            return false;
        }
    });
}

DiskDriveManagerPtr DeviceManager::GetDevice(std::uint32_t disk_index) const {
    const std::wstring index = DecimalText(disk_index);
    const auto found = disks_.find(index);
    if (found == disks_.end()) {
        GetLogger().Write(kLogTrace, L"DeviceManager::GetDevice no device with index %s", index.c_str());
        return {};
    }
    return found->second;
}

void DeviceManager::GetDisks(std::uint32_t style, std::vector<DiskDriveManagerPtr>& disks) const {
    Traced(L"bmr_common::DeviceManager::GetDisks", [&] {
        for (const auto& [index, disk] : disks_) {
            if (disk && disk->GetPartitionStyle() == style) {
                disks.push_back(disk);
            }
        }
    });
}

void DeviceManager::DumpInfo() const {
    Traced(L"bmr_common::DeviceManager::DumpInfo", [&] {
        GetLogger().Write(kLogInformation, L"");
        GetLogger().Write(kLogInformation, L"[Device Information]");
        GetLogger().Write(kLogInformation, L"Number of Disks: %d", static_cast<int>(disks_.size()));
        for (const auto& [index, disk] : disks_) {
            if (disk) {
                disk->DumpInfo();
            } else {
                GetLogger().Write(kLogError, L"DeviceManager::DumpInfo - NULL device found with id %s",
                                  index.c_str());
            }
        }
    });
}

void DeviceManager::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::DeviceManager::CaptureInfo", [&] {
        CMSXmlNode device_info = parent.AddChild("DeviceInfo");
        AddNumberElement(device_info, "NumberOfDisks", disks_.size());
        std::size_t position = 0;
        for (const auto& [index, disk] : disks_) {
            CMSXmlNode node = device_info.AddChild(("Disk" + std::to_string(++position)).c_str());
            if (disk) {
                disk->CaptureInfo(node);
            }
        }
    });
}

}  // namespace bmr_common
