#include "common/disk/partition_gpt.h"

#include "common/logger/trace.h"
#include "common/platform/guid.h"
#include "common/record/dynamic_types.h"

#include <array>
#include <cstring>

namespace bmr_common {

namespace {

struct PartitionType {
    GUID id;
    const wchar_t* name;
    bool may_be_backed_up;
};

constexpr GUID kUnused = {};
constexpr GUID kSystem = {0xC12A7328, 0xF81F, 0x11D2, {0xBA, 0x4B, 0x00, 0xA0, 0xC9, 0x3E, 0xC9, 0x3B}};

constexpr PartitionType kTypes[] = {
    {{0xEBD0A0A2, 0xB9E5, 0x4433, {0x87, 0xC0, 0x68, 0xB6, 0xB7, 0x26, 0x99, 0xC7}},
     L"Basic data partition",
     true},
    {kUnused, L"Unused partition entry", false},
    {kSystem, L"System partition", false},
    {{0xE3C9E316, 0x0B5C, 0x4DB8, {0x81, 0x7D, 0xF9, 0x2D, 0xF0, 0x02, 0x15, 0xAE}},
     L"Microsoft reserved partition",
     false},
    {kLdmMetadataPartition, L"LDM metadata partition", false},
    {kLdmDataPartition, L"LDM data partition", true},
    {{0xDE94BBA4, 0x06D1, 0x4D40, {0xA1, 0x6A, 0xBF, 0xD5, 0x01, 0x79, 0xD6, 0xAC}},
     L"MSFT recovery partition",
     false},
};
constexpr PartitionType kUnknownType = {{}, L"Unknown partition", false};

const PartitionType& FindType(const GUID& id) {
    for (const PartitionType& type : kTypes) {
        if (IsEqualGUID(type.id, id)) {
            return type;
        }
    }
    return kUnknownType;
}

}  // namespace

void PartitionGPT::GetPartitionTypeName(std::wstring& name) const {
    name = FindType(entry_.Gpt.PartitionType).name;
}

bool PartitionGPT::can_backup(std::vector<std::wstring>& reasons) const {
    const PartitionType& type = FindType(entry_.Gpt.PartitionType);
    if (type.may_be_backed_up) {
        return true;
    }
    // Starts with a blank: compatibility C33
    const std::wstring reason = std::wstring(L" Can't backup partition of type ") + type.name + L" " +
                                GuidText(entry_.Gpt.PartitionType);
    reasons.push_back(reason);
    GetLogger().Write(kLogInformation, L"%s %s", L"bmr_common::PartitionGPT::can_backup", reason.c_str());
    return false;
}

void PartitionGPT::DumpInfo() const {
    Traced(L"bmr_common::PartitionGPT::DumpInfo", [&] {
        Partition::DumpInfo();
        std::array<wchar_t, std::size(decltype(entry_.Gpt.Name){}) + 1>
            name{};  // adds the terminator that a name of full length lacks
        std::memcpy(name.data(), entry_.Gpt.Name, sizeof(entry_.Gpt.Name));
        std::wstring type_name;
        GetPartitionTypeName(type_name);
        GetLogger().Write(kLogInformation, L"    Type: %s (%s)", type_name.c_str(),
                          GuidText(entry_.Gpt.PartitionType).c_str());
        GetLogger().Write(kLogInformation, L"    Partition Id: %s", GuidText(entry_.Gpt.PartitionId).c_str());
        GetLogger().Write(kLogInformation, L"    Attributes: 0x%I64x", entry_.Gpt.Attributes);
        GetLogger().Write(kLogInformation, L"    Name: %s", name.data());
        GetLogger().Write(kLogInformation, L"");
    });
}

bool PartitionGPT::is_dynamic() const {
    return IsEqualGUID(entry_.Gpt.PartitionType, kLdmDataPartition);
}

bool PartitionGPT::is_unused() const {
    return IsEqualGUID(entry_.Gpt.PartitionType, kUnused);
}

bool PartitionGPT::contains_extent(const std::int64_t& offset, const std::int64_t& length) const {
    return !is_unused() && Partition::contains_extent(offset, length);
}

bool PartitionGPT::is_bootable() const {
    return IsEqualGUID(entry_.Gpt.PartitionType, kSystem);
}

}  // namespace bmr_common
