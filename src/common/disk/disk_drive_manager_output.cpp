// The output of a disk: the text dump and the XML fragment.

#include "common/disk/disk_drive_manager.h"
#include "common/disk/sizes.h"
#include "common/logger/trace.h"
#include "common/platform/guid.h"
#include "common/text/decimal_text.h"
#include "common/xml/xml_values.h"

#include <array>
#include <cwchar>

namespace bmr_common {

namespace {

constexpr std::uint32_t kDetectInt13 = 1;
constexpr std::uint32_t kDetectExInt13 = 2;

// One field of a detection record: its dump line, XML element and value.
struct DetectionFact {
    const wchar_t* line;
    const char* element;
    std::uint64_t value;
};

std::vector<DetectionFact> DetectionFacts(const DiskGeometry& geometry) {
    const DISK_DETECTION_INFO detection = geometry.detection();
    const DISK_INT13_INFO& int13 = detection.Int13;
    const DISK_EX_INT13_INFO& extended = detection.ExInt13;
    switch (geometry.detection_type()) {
        case kDetectInt13:
            return {
                {L"  DriveSelect: %d", "DriveSelect", int13.DriveSelect},
                {L"  MaxCylinders: %d", "MaxCylinders", int13.MaxCylinders},
                {L"  SectorsPerTrack: %d", "SectorsPerTrack", int13.SectorsPerTrack},
                {L"  MaxHeads: %d", "MaxHeads", int13.MaxHeads},
                {L"  NumberDrives: %d", "NumberDrives", int13.NumberDrives},
            };
        case kDetectExInt13:
            return {
                {L"  ExBufferSize: %d", "ExBufferSize", extended.ExBufferSize},
                {L"  ExFlags: %d", "ExFlags", extended.ExFlags},
                {L"  ExCylinders: %d", "ExCylinders", extended.ExCylinders},
                {L"  ExHeads: %d", "ExHeads", extended.ExHeads},
                {L"  ExSectorsPerTrack: %d", "ExSectorsPerTrack", extended.ExSectorsPerTrack},
                {L"  ExSectorsPerDrive: %d", "ExSectorsPerDrive", extended.ExSectorsPerDrive},
                {L"  ExSectorSize: %d", "ExSectorSize", extended.ExSectorSize},
                {L"  ExReserved: %d", "ExReserved", extended.ExReserved},
            };
        default:
            return {};
    }
}

void DumpGeometry(const DiskGeometry& disk) {
    const DISK_GEOMETRY& geometry = disk.geometry();
    GetLogger().Write(kLogInformation, L"  Disk Size: %I64d(%.2f GB)", disk.disk_size(),
                      Gigabytes(static_cast<double>(disk.disk_size())));
    // Misspelled on purpose: compatibility C44
    GetLogger().Write(kLogInformation, L"  Cyclinders: %I64d", geometry.Cylinders.QuadPart);
    GetLogger().Write(kLogInformation, L"  MediaType: %d", disk.media_type());
    GetLogger().Write(kLogInformation, L"  TracksPerCylinder: %d", geometry.TracksPerCylinder);
    GetLogger().Write(kLogInformation, L"  SectorsPerTrack: %d", geometry.SectorsPerTrack);
    GetLogger().Write(kLogInformation, L"  BytesPerSector: %d", geometry.BytesPerSector);
    GetLogger().Write(kLogInformation, L"  DetectionType: %d", disk.detection_type());
    for (const DetectionFact& fact : DetectionFacts(disk)) {
        // All values are printed as 32-bit numbers, even ExSectorsPerDrive: compatibility C47
        GetLogger().Write(kLogInformation, fact.line, static_cast<std::int32_t>(fact.value));
    }
}

// Writes the address of the GUID's text instead of the text: compatibility C78
void CaptureGuidAddress(CMSXmlNode& parent, const GUID& disk_id) {
    const std::wstring text = GuidText(disk_id);
    std::array<wchar_t, 20> address{};
    _snwprintf(address.data(), address.size() - 1, L"%p", static_cast<const void*>(text.data()));
    parent.AddTextChild("GUID", address.data());
}

void CapturePartitionStyle(CMSXmlNode& parent, const DiskGeometry& disk) {
    switch (disk.partition_style()) {
        case kStyleMBR:
            parent.AddTextChild("PartitionStyle", L"MBR");
            AddNumberElement(parent, "Signature", disk.signature());
            break;
        case kStyleGPT:
            parent.AddTextChild("PartitionStyle", L"GPT");
            CaptureGuidAddress(parent, disk.disk_id());
            break;
        case kStyleRAW:
            parent.AddTextChild("PartitionStyle", L"RAW");
            break;
        default:
            parent.AddTextChild("PartitionStyle", L"UNKNOWN");
            break;
    }
}

}  // namespace

void DiskDriveManager::DumpInfo() const {
    Traced(L"bmr_common::DiskDriveManager::DumpInfo", [&] {
        GetLogger().Write(kLogInformation, L"");
        GetLogger().Write(kLogInformation, L"[Disk/Partition Information]");
        GetLogger().Write(kLogInformation, L"Disk id: %s", DecimalText(disk_index_).c_str());
        std::vector<std::wstring> reasons;
        GetLogger().Write(kLogInformation, L"  Available for backup: %s", TrueOrFalse(can_backup(reasons)));
        for (const std::wstring& reason : reasons) {
            GetLogger().Write(kLogInformation, L"    Failure reason: %s", reason.c_str());
        }
        // Logs the failures again, as errors: compatibility C50
        status_.DumpAll();
        if (has_geometry()) {
            // For a raw disk this logs an error: compatibility C48
            GetLogger().Write(kLogInformation, L"  Dynamic disk: %s", TrueOrFalse(is_dynamic()));
            DumpGeometry(geometry_);
        }
    });
}

void DiskDriveManager::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::DiskDriveManager::CaptureInfo", [&] { CaptureCommonInfo(parent); });
}

bool DiskDriveManager::CaptureCommonInfo(CMSXmlNode& parent) const {
    AddNumberElement(parent, "DiskId", disk_index_);
    std::vector<std::wstring> reasons;
    if (!can_backup(reasons)) {
        // Nothing else is written, even if it is known: compatibility C83
        parent.AddTextChild("DiskSize", L"0");
        return false;
    }
    const DISK_GEOMETRY& geometry = geometry_.geometry();
    parent.AddTextChild("DynamicDisk", TrueOrFalse(is_dynamic()));
    AddNumberElement(parent, "DiskSize", geometry_.disk_size());
    // Misspelled on purpose: compatibility C44
    AddNumberElement(parent, "Cyclinders", geometry.Cylinders.QuadPart);
    AddNumberElement(parent, "MediaType", static_cast<std::int32_t>(geometry_.media_type()));
    AddNumberElement(parent, "TracksPerCylinder", geometry.TracksPerCylinder);
    AddNumberElement(parent, "SectorsPerTrack", geometry.SectorsPerTrack);
    // Lower case on purpose: compatibility C79
    AddNumberElement(parent, "bytes_per_sector", geometry.BytesPerSector);
    CapturePartitionStyle(parent, geometry_);
    AddNumberElement(parent, "DetectionType", static_cast<std::int32_t>(geometry_.detection_type()));
    for (const DetectionFact& fact : DetectionFacts(geometry_)) {
        AddNumberElement(parent, fact.element, fact.value);
    }
    return true;
}

}  // namespace bmr_common
