#include "documents/show/partition_types.h"

#include <algorithm>
#include <string_view>

namespace documents {

namespace {

struct MbrType {
    std::uint8_t type;
    std::string_view name;
};

constexpr MbrType kMbrTypes[] = {
    {0x01, "FAT12"}, {0x04, "FAT16"},     {0x06, "FAT16"},    {0x07, "NTFS or exFAT"}, {0x0B, "FAT32"},
    {0x0C, "FAT32"}, {0x0E, "FAT16"},     {0x27, "recovery"}, {0x42, "dynamic disk"},  {0x82, "Linux swap"},
    {0x83, "Linux"}, {0x8E, "Linux LVM"}, {0xEE, "GPT"},      {0xEF, "EFI system"},
};

struct GptType {
    std::string_view type;
    std::string_view name;
};

constexpr GptType kGptTypes[] = {
    {"{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}", "EFI system"},
    {"{E3C9E316-0B5C-4DB8-817D-F92DF00215AE}", "Microsoft reserved"},
    {"{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}", "basic data"},
    {"{DE94BBA4-06D1-4D40-A16A-BFD50179D6AC}", "recovery"},
    {"{AF9B60A0-1431-4F62-BC68-3311714A69AD}", "dynamic data"},
    {"{5808C8AA-7E8F-42E0-85D2-E1E90434CFB3}", "dynamic metadata"},
    {"{E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D}", "storage space"},
    {"{DB97DBA9-0840-4BAE-97F0-FFB9A327C7E1}", "cluster metadata"},
    {"{0FC63DAF-8483-4772-8E79-3D69D8477DE4}", "Linux"},
};

std::string Hex(std::uint8_t byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    return {kDigits[byte >> 4U], kDigits[byte & 0xFU]};
}

}  // namespace

std::string TypeName(const Partition& partition) {
    if (partition.gpt_type) {
        const auto* const found =
            std::find_if(std::begin(kGptTypes), std::end(kGptTypes),
                         [&](const GptType& row) { return row.type == *partition.gpt_type; });
        return found == std::end(kGptTypes) ? "type " + *partition.gpt_type : std::string(found->name);
    }
    if (!partition.mbr_type) {
        return "type unknown";
    }
    const auto* const found =
        std::find_if(std::begin(kMbrTypes), std::end(kMbrTypes),
                     [&](const MbrType& row) { return row.type == *partition.mbr_type; });
    const std::string number = Hex(*partition.mbr_type);
    return found == std::end(kMbrTypes) ? "type " + number : std::string(found->name) + " (" + number + ")";
}

}  // namespace documents
