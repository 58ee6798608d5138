#pragma once

#include "unit/common/disk/listed_disks.h"
#include "unit/common/disk/simulated_disks.h"

#include <string>

// Volumes on one described disk, and the library objects that a volume uses.
namespace described {

inline constexpr const wchar_t* kDataId = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\";
inline constexpr const wchar_t* kDataDevice = L"\\Device\\HarddiskVolume2";

// Disk 0 with an active partition of 500 MiB and one of 4 GiB, with a volume on each.
inline constexpr const char* kTwoVolumes = R"({"disks": [{
    "index": 0, "size": "8 GiB", "signature": 439041101,
    "partitions": [
        {"offset": "1 MiB", "size": "500 MiB", "type": "ntfs", "active": true},
        {"offset": "501 MiB", "size": "4 GiB", "type": "ntfs"}
    ]}],
    "volumes": [
        {"guid": "{00000000-0000-0000-0000-000000000001}", "partition": {"disk": 0, "number": 1},
         "label": "System Reserved"},
        {"guid": "{00000000-0000-0000-0000-000000000002}", "partition": {"disk": 0, "number": 2},
         "mountPoints": ["D:\\", "C:\\Data\\Archive\\"], "label": "Data & <more>", "serial": 439041101,
         "maxComponentLength": 255, "flags": 65482495, "sectorsPerCluster": 8, "bytesPerSector": 512,
         "totalClusters": 1048575, "freeClusters": 1000, "totalBytes": 4294963200, "freeBytes": 1610612736,
         "freeBytesToCaller": 1073741824}
    ]})";

// A machine whose disk 0 the library knows.
class Machine : public simulated_disks::Machine {
public:
    explicit Machine(const std::string& json = kTwoVolumes) : simulated_disks::Machine(json) {
        disks_.InitializeWithCurrentDisks();
        simulation().calls().Clear();
    }

    listed::Disks& disks() { return disks_; }
    machine::Volume& volume(std::size_t position) { return simulation().description().volumes.at(position); }

private:
    listed::Disks disks_{L"0"};
};

}  // namespace described
