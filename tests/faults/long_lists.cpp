// A machine far larger than real ones: 256 disks of 128 partitions each, and 10,000 volumes with 4 mount
// points each.

#include "common/windows.h"
#include "faults/case_runner.h"
#include "support/xml_tree.h"

#include <psapi.h>

#include <array>
#include <span>

namespace faults {

namespace {

constexpr std::uint32_t kDisks = 256;
constexpr std::uint32_t kPartitions = 128;
constexpr std::size_t kVolumes = 10'000;
constexpr std::size_t kMountPoints = 4;
constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
constexpr std::uint64_t kPartitionBytes = 64 * kMiB;
constexpr std::size_t kLongDocument = std::size_t{32} << 20;

std::string Hexadecimal(std::uint32_t number) {
    std::array<char, 16> text{};
    _snprintf(text.data(), text.size() - 1, "%08x", number);
    return text.data();
}

void AppendDisk(std::string& json, std::uint32_t index) {
    // Index 255 is skipped, because the library ignores this number in WMI's list of disks.
    const std::uint32_t number = index < 255 ? index : index + 1;
    json += (index == 0 ? "" : ",");
    json += R"({"index": )" + std::to_string(number) + R"(, "size": "16 GiB", "diskId": "{)" +
            Hexadecimal(number + 1) + R"(-0000-0000-0000-000000000000}", "partitions": [)";
    for (std::uint32_t i = 0; i < kPartitions; ++i) {
        json += (i == 0 ? "" : ",");
        json += R"({"offset": )" + std::to_string(kMiB + i * kPartitionBytes) + R"(, "size": )" +
                std::to_string(kPartitionBytes) + R"(, "type": "basic-data"})";
    }
    json += "]}";
}

// The extent of a partition, by its number.
std::string Extent(std::uint32_t disk, std::uint32_t partition) {
    return R"({"disk": )" + std::to_string(disk) + R"(, "offset": )" +
           std::to_string(kMiB + (partition - 1) * kPartitionBytes) + R"(, "length": )" +
           std::to_string(kPartitionBytes) + "}";
}

void AppendVolume(std::string& json, std::size_t number) {
    const std::uint32_t disk = static_cast<std::uint32_t>(number % 255);
    const std::uint32_t partition = static_cast<std::uint32_t>(number / 255) + 1;
    const std::string name = Hexadecimal(static_cast<std::uint32_t>(number));
    json += (number == 0 ? "" : ",");
    json += R"({"guid": "{)" + name + R"(-1111-2222-3333-444444444444}", )";
    // One volume in four lies on one partition; the others have two extents.
    json += number % 4 == 0
                ? R"("partition": {"disk": )" + std::to_string(disk) + R"(, "number": )" +
                      std::to_string(partition) + "}"
                : R"("extents": [)" + Extent(disk, partition) + ", " + Extent(disk, partition + 60) + "]";
    json += R"(, "mountPoints": [)";
    json += number == 0 ? R"("C:\\",)" : "";
    for (std::size_t i = number == 0 ? 1 : 0; i < kMountPoints; ++i) {
        json += R"("C:\\Mounts\\)" + name + R"(\\)" + std::to_string(i) +
                (i + 1 < kMountPoints ? R"(\\",)" : R"(\\")");
    }
    json += "]}";
}

machine::Description LongMachine() {
    std::string json = R"({"name": "Long lists", "disks": [)";
    for (std::uint32_t i = 0; i < kDisks; ++i) {
        AppendDisk(json, i);
    }
    json += R"(], "volumes": [)";
    for (std::size_t i = 0; i < kVolumes; ++i) {
        AppendVolume(json, i);
    }
    return machine::ParseDescription(json + "]}", "long lists");
}

std::size_t Count(const std::string& text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

struct Expected {
    std::string_view part;
    std::size_t count;
};

// Disk numbers run from 0 to 256. Number 255 is a placeholder, which has a row too.
constexpr Expected kFlat[] = {{"<partition_guid>", kDisks*(kPartitions + 1) + 1},
                              {"<size_idy>", kDisks + 1},
                              {"<BlockSize>", kVolumes},
                              {"<m_strDrive", kVolumes},
                              {"<extent1>", kVolumes / 4 * 3},
                              {"<parttype>Primary<", kDisks* kPartitions}};
constexpr Expected kModel[] = {{"<DiskId>", kDisks},
                               {"<VolumeGUID>", kVolumes},
                               {"<MountPoint1>", kVolumes},
                               {"<MountPoint4>", kVolumes},
                               {"<ExtentLength>", kVolumes / 4 + kVolumes / 4 * 3 * 2}};

std::size_t PeakBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof(counters);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakWorkingSetSize;
}

std::vector<std::string> RunLong(Bench& bench, const EntryPoint& entry) {
    const Outcome outcome = bench.Call();
    std::vector<std::string> failures = bench.Breaches(outcome);
    if (entry.format == 0) {
        return failures;
    }
    if (outcome.status != ORVANE_SUCCESS) {
        failures.emplace_back("status");
    }
    for (const Expected& expected : entry.format == 2 ? std::span<const Expected>(kFlat) : kModel) {
        const std::size_t count = Count(outcome.output, expected.part);
        if (count != expected.count) {
            failures.push_back(std::string(expected.part) + " stands " + std::to_string(count) + " times");
        }
    }
    if (entry.format == 2 && outcome.output.size() < kLongDocument) {
        failures.push_back("the document has " + std::to_string(outcome.output.size()) + " bytes only");
    }
    std::printf("LONG %s: %zu bytes of document, %zu MiB of memory at most\n",
                std::string(entry.name).c_str(), outcome.output.size(), PeakBytes() >> 20);
    return failures;
}

}  // namespace

void LongLists(CaseRunner& runner, const Library& library) {
    const EntryPoint& entry = FindEntryPoint(runner.choice().entry);
    runner.tally().calls += 1;
    runner.Run("", "every call", [&] {
        Bench bench(library, entry, LongMachine());
        return RunLong(bench, entry);
    });
}

}  // namespace faults
