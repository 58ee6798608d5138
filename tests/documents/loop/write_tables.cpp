// Lets the library write partition tables on images.
// usage: write_tables LIST
// Each line of the file LIST (UTF-8) is a JSON object: "image", "bytesPerSector", "size" of the disk;
// "label", "dos" with the "signature" or "gpt" with the "id" and "partitions", each with "start" and "size"
// in bytes and "type". Prints for each line a JSON object, with the ids that the library made or the "error".

#include "common/disk/disk_drive_manager.h"
#include "common/disk/partition_manager_gpt.h"
#include "common/platform/guid.h"
#include "machine/description/text.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"

#include <nlohmann/json.hpp>
#include <objbase.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

using nlohmann::json;

constexpr std::uint32_t kAlignment = 1U << 20;

GUID GuidOf(const std::string& plain) {
    GUID guid{};
    if (FAILED(CLSIDFromString(machine::Widen("{" + plain + "}").c_str(), &guid))) {
        throw std::invalid_argument("no GUID: " + plain);
    }
    return guid;
}

std::string TextOf(const GUID& guid) {
    const std::string braced = machine::Narrow(GuidText(guid));
    return braced.substr(1, braced.size() - 2);
}

void Require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(std::string(what) + " failed");
    }
}

void Initialize(const json& disk) {
    CREATE_DISK description{};
    if (disk.at("label") == "dos") {
        description.PartitionStyle = PARTITION_STYLE_MBR;
        description.Mbr.Signature = disk.at("signature");
    } else {
        description.PartitionStyle = PARTITION_STYLE_GPT;
        description.Gpt.DiskId = GuidOf(disk.at("id"));
        description.Gpt.MaxPartitionCount = bmr_common::kUsualPartitionCount;
    }
    Require(bmr_common::DiskDriveManager::InitializeRAWDisk(0, description), "InitializeRAWDisk");
}

void Add(bmr_common::PartitionManagerGPT& manager, const json& disk, const json& partition) {
    const std::int64_t start = partition.at("start");
    const std::int64_t size = partition.at("size");
    std::int64_t used_start = 0;
    std::int64_t used_size = 0;
    Require(manager.AddPartitionInMemory(start, size, size, disk.at("size"), kAlignment,
                                         GuidOf(partition.at("type")), &used_start, &used_size),
            "AddPartitionInMemory");
}

// The ids of the partitions by their order on the disk.
json WritePartitions(const json& disk) {
    bmr_common::PartitionManagerGPT manager(0);
    {
        UniqueFile drive;
        DWORD error = 0;
        Require(win::WinAPIWrapper::OpenPhysicalDrive(0, 0, &drive, error), "OpenPhysicalDrive");
        manager.Initialize(drive);
    }
    for (const json& partition : disk.at("partitions")) {
        Add(manager, disk, partition);
    }
    Require(manager.CommitPartitionTable(), "CommitPartitionTable");
    json ids = json::array();
    for (DWORD i = 0; i < manager.layout()->PartitionCount; ++i) {
        ids.push_back(TextOf(manager.layout()->PartitionEntry[i].Gpt.PartitionId));
    }
    return ids;
}

json Write(const json& disk) {
    const json description = {{"disks",
                               {{{"index", 0},
                                 {"image", disk.at("image")},
                                 {"bytesPerSector", disk.at("bytesPerSector")},
                                 {"writable", true}}}}};
    const machine::Simulation simulation(machine::ParseDescription(description.dump(), "the list", {}));
    Initialize(disk);
    return {{"ids", disk.at("label") == "gpt" ? WritePartitions(disk) : json::array()}};
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    std::ifstream list(count == 2 ? std::filesystem::path(arguments[1]) : std::filesystem::path());
    if (!list) {
        std::fputs("usage: write_tables LIST\n", stderr);
        return 2;
    }
    // Without it, the library would write to the disks of the system.
    if (!machine::PutModuleOnSimulation(GetModuleHandleW(nullptr))) {
        std::fputs("write_tables: this program cannot be put on the simulation\n", stderr);
        return 1;
    }
    for (std::string line; std::getline(list, line);) {
        json answer;
        try {
            answer = Write(json::parse(line));
        } catch (const std::exception& error) {
            answer = {{"error", error.what()}};
        }
        std::cout << answer.dump() << '\n';
    }
    return 0;
}
