#include "common/disk/partition_mbr.h"

#include "common/logger/trace.h"
#include "common/record/dynamic_types.h"
#include "common/xml/xml_values.h"

namespace bmr_common {

namespace {

constexpr std::uint8_t kUnusedType = 0;

}  // namespace

std::uint8_t PartitionMBR::boot_indicator() const {
    return entry_.Mbr.BootIndicator;
}

std::uint8_t PartitionMBR::recognized() const {
    return entry_.Mbr.RecognizedPartition;
}

bool PartitionMBR::can_backup(std::vector<std::wstring>& reasons) const {
    if (!is_unused()) {
        return true;
    }
    // Starts with a blank: compatibility C33
    const std::wstring reason = L" Partition is marked as unused entry";
    reasons.push_back(reason);
    GetLogger().Write(kLogInformation, L"%s %s", L"bmr_common::PartitionMBR::can_backup", reason.c_str());
    return false;
}

void PartitionMBR::DumpInfo() const {
    Traced(L"bmr_common::PartitionMBR::DumpInfo", [&] {
        Partition::DumpInfo();
        GetLogger().Write(kLogInformation, L"    Type: 0x%x", entry_.Mbr.PartitionType);
        GetLogger().Write(kLogInformation, L"    BootIndicator: %d", boot_indicator());
        GetLogger().Write(kLogInformation, L"    Recognized Partition: %d", recognized());
        GetLogger().Write(kLogInformation, L"    HiddenSectors: %d", entry_.Mbr.HiddenSectors);
        GetLogger().Write(kLogInformation, L"");
    });
}

void PartitionMBR::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::PartitionMBR::CaptureInfo", [&] {
        Partition::CaptureInfo(parent);
        AddNumberElement(parent, "Type", static_cast<std::int32_t>(entry_.Mbr.PartitionType));
        parent.AddTextChild("BootIndicator", TrueOrFalse(boot_indicator() != 0));
        parent.AddTextChild("RecognizedPartition", TrueOrFalse(recognized() != 0));
        AddNumberElement(parent, "HiddenSectors", entry_.Mbr.HiddenSectors);
    });
}

bool PartitionMBR::is_dynamic() const {
    return entry_.Mbr.PartitionType == kLdmMbrType;
}

bool PartitionMBR::is_unused() const {
    return entry_.Mbr.PartitionType == kUnusedType;
}

bool PartitionMBR::contains_extent(const std::int64_t& offset, const std::int64_t& length) const {
    return !is_unused() && recognized() == 1 && Partition::contains_extent(offset, length);
}

bool PartitionMBR::is_bootable() const {
    return boot_indicator() == 1;
}

}  // namespace bmr_common
