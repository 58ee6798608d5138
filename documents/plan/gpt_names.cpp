#include "documents/plan/gpt_names.h"

#include <algorithm>

namespace documents {

namespace {

// Bit 0: the platform needs it. Bit 63: it gets no drive letter.
constexpr GptName kNames[] = {
    {"{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}", "Basic data partition", ""},
    {"{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}", "EFI system partition", "GUID:63"},
    {"{E3C9E316-0B5C-4DB8-817D-F92DF00215AE}", "Microsoft reserved partition", "GUID:63"},
    {"{DE94BBA4-06D1-4D40-A16A-BFD50179D6AC}", "Basic data partition", "RequiredPartition GUID:63"},
    {"{DB97DBA9-0840-4BAE-97F0-FFB9A327C7E1}", "Cluster metadata partition", ""},
    {"{5808C8AA-7E8F-42E0-85D2-E1E90434CFB3}", "LDM metadata partition", ""},
    {"{AF9B60A0-1431-4F62-BC68-3311714A69AD}", "LDM data partition", ""},
};

}  // namespace

GptName GptNameOf(const Partition& partition) {
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames), [&](const GptName& row) {
        return partition.gpt_type == row.type;
    });
    return found == std::end(kNames) ? GptName{} : *found;
}

}  // namespace documents
