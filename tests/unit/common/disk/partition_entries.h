#pragma once

#include "common/windows.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

// Partition table entries as a driver reports them, and the type GUIDs used in them.
namespace entries {

inline constexpr GUID kBasicData = {
    0xEBD0A0A2, 0xB9E5, 0x4433, {0x87, 0xC0, 0x68, 0xB6, 0xB7, 0x26, 0x99, 0xC7}};
inline constexpr GUID kUnused = {};
inline constexpr GUID kEfiSystem = {
    0xC12A7328, 0xF81F, 0x11D2, {0xBA, 0x4B, 0x00, 0xA0, 0xC9, 0x3E, 0xC9, 0x3B}};
inline constexpr GUID kReserved = {
    0xE3C9E316, 0x0B5C, 0x4DB8, {0x81, 0x7D, 0xF9, 0x2D, 0xF0, 0x02, 0x15, 0xAE}};
inline constexpr GUID kLdmMetadata = {
    0x5808C8AA, 0x7E8F, 0x42E0, {0x85, 0xD2, 0xE1, 0xE9, 0x04, 0x34, 0xCF, 0xB3}};
inline constexpr GUID kLdmData = {
    0xAF9B60A0, 0x1431, 0x4F62, {0xBC, 0x68, 0x33, 0x11, 0x71, 0x4A, 0x69, 0xAD}};
inline constexpr GUID kRecovery = {
    0xDE94BBA4, 0x06D1, 0x4D40, {0xA1, 0x6A, 0xBF, 0xD5, 0x01, 0x79, 0xD6, 0xAC}};
inline constexpr GUID kForeign = {
    0x0FC63DAF, 0x8483, 0x4772, {0x8E, 0x79, 0x3D, 0x69, 0xD8, 0x47, 0x7D, 0xE4}};

inline constexpr std::uint8_t kNtfs = 0x07;
inline constexpr std::uint8_t kLdm = 0x42;

inline void SetStyle(PARTITION_INFORMATION_EX& entry, std::uint32_t style) {
    std::memcpy(&entry.PartitionStyle, &style, sizeof(style));
}

inline PARTITION_INFORMATION_EX Mbr(std::int64_t offset, std::int64_t length, std::uint8_t type = kNtfs) {
    PARTITION_INFORMATION_EX entry{};
    entry.PartitionStyle = PARTITION_STYLE_MBR;
    entry.StartingOffset.QuadPart = offset;
    entry.PartitionLength.QuadPart = length;
    entry.Mbr.PartitionType = type;
    entry.Mbr.RecognizedPartition = TRUE;
    return entry;
}

inline PARTITION_INFORMATION_EX Gpt(std::int64_t offset, std::int64_t length, const GUID& type = kBasicData,
                                    std::wstring_view name = {}) {
    PARTITION_INFORMATION_EX entry{};
    entry.PartitionStyle = PARTITION_STYLE_GPT;
    entry.StartingOffset.QuadPart = offset;
    entry.PartitionLength.QuadPart = length;
    entry.Gpt.PartitionType = type;
    std::copy_n(name.begin(), std::min(name.size(), std::size(entry.Gpt.Name)), entry.Gpt.Name);
    return entry;
}

}  // namespace entries
