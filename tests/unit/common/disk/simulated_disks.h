#pragma once

#include "common/platform/win_api_wrapper.h"
#include "machine/simulation/simulation.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

// Machines with one or two disks, and functions to open them.
namespace simulated_disks {

inline constexpr std::int64_t kMiB = 1LL << 20;

// Disk 3, 10 GiB: EFI system partition, reserved partition, data partition of 4 GiB, free space.
inline constexpr const char* kGptDisk = R"({"disks": [{
    "index": 3, "size": "10 GiB", "diskId": "{11111111-2222-3333-4444-555555555555}",
    "startingUsableOffset": 17408, "usableLength": 10737383936,
    "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "efi-system", "id": "{00000001-0000-0000-0000-000000000000}"},
        {"offset": "101 MiB", "size": "16 MiB", "type": "reserved", "id": "{00000002-0000-0000-0000-000000000000}"},
        {"offset": "117 MiB", "size": "4 GiB", "type": "basic-data", "id": "{00000003-0000-0000-0000-000000000000}"}
    ]}]})";

// Disk 1, 8 GiB: an active partition, another partition, two unused slots.
inline constexpr const char* kMbrDisk = R"({"disks": [{
    "index": 1, "size": "8 GiB", "signature": 439041101,
    "partitions": [
        {"offset": "1 MiB", "size": "500 MiB", "type": "ntfs", "active": true},
        {"offset": "501 MiB", "size": "4 GiB", "type": "ntfs"}
    ]}]})";

// The simulation of a test. The destructor checks that no handle is left open.
class Machine {
public:
    explicit Machine(const std::string& json) : simulation_(machine::ParseDescription(json, "machine")) {}
    ~Machine() {
        EXPECT_EQ(0U, simulation_.open_handles());
        EXPECT_EQ(0U, simulation_.stale_handle_uses());
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    machine::Simulation& simulation() { return simulation_; }
    machine::Disk& disk() { return simulation_.description().disks.front(); }

    UniqueFile Open() { return OpenDisk(disk().index); }

    static UniqueFile OpenDisk(std::uint32_t index) {
        UniqueFile drive;
        DWORD error = 0;
        EXPECT_TRUE(win::WinAPIWrapper::OpenPhysicalDrive(index, 0, &drive, error));
        return drive;
    }

private:
    machine::Simulation simulation_;
};

}  // namespace simulated_disks
