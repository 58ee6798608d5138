#pragma once

#include "capture/environment/env_info.h"
#include "machine/session/session.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

// One of the example machines.
inline machine::Description ExampleMachine(const std::string& name) {
    return machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/" + name);
}

constexpr std::uint64_t MiB(std::uint64_t count) {
    return count << 20;
}

// The fields that identify a partition row.
struct RowFacts {
    std::wstring kind;
    std::wstring operation;
    std::uint64_t offset = 0;  // bytes
    std::uint64_t length = 0;  // bytes
    std::int32_t number = 0;
    std::wstring drive;
    std::wstring file_system;

    bool operator==(const RowFacts&) const = default;
};

inline void PrintTo(const RowFacts& row, std::ostream* out) {
    *out << row.offset << "+" << row.length << " number " << row.number << " "
         << std::string(row.kind.begin(), row.kind.end()) << "/"
         << std::string(row.operation.begin(), row.operation.end()) << " "
         << std::string(row.drive.begin(), row.drive.end()) << " "
         << std::string(row.file_system.begin(), row.file_system.end());
}

inline std::vector<RowFacts> FactsOf(const DiskRow& disk) {
    std::vector<RowFacts> facts;
    for (const PartitionRow& row : disk.partitions) {
        facts.push_back({row.kind, row.operation, static_cast<std::uint64_t>(row.offset),
                         static_cast<std::uint64_t>(row.length), row.partition_number, row.drive,
                         row.file_system});
    }
    return facts;
}

// The row of the volume with that device name; throws std::out_of_range when it does not exist.
inline const ::Volume& VolumeOn(const EnvInfo& record, const std::wstring& device) {
    const auto found = std::find_if(record.VolumeTable.begin(), record.VolumeTable.end(),
                                    [&](const ::Volume& volume) { return volume.DeviceName == device; });
    if (found == record.VolumeTable.end()) {
        throw std::out_of_range("no volume row of that device");
    }
    return *found;
}
