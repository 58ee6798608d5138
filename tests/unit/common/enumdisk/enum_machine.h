#pragma once

#include "machine/session/session.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

// Described machines for the enumerator's tests, and the log of the enumeration.
namespace enum_machine {

inline constexpr std::int64_t kMiB = 1LL << 20;
inline constexpr const wchar_t* kDrive0 = L"\\\\.\\PhysicalDrive0";
inline constexpr const wchar_t* kDrive1 = L"\\\\.\\PhysicalDrive1";

inline constexpr const char* kLayoutEx = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX";
inline constexpr const char* kLayout = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT";
inline constexpr const char* kLength = "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO";
inline constexpr const char* kGeometry = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY";
inline constexpr const char* kExtents = "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS";
inline constexpr const char* kPartition = "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO";

// Disk 0, 1000 MiB, MBR: 100 MiB active at 1 MiB, 200 MiB at 101 MiB. Disk 1, GPT.
inline constexpr const char* kMbrAndGpt = R"({"disks": [
    {"index": 0, "size": "1000 MiB", "signature": 439041101, "wmi": {"InterfaceType": "IDE"}, "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs", "active": true},
        {"offset": "101 MiB", "size": "200 MiB", "type": "ntfs"}]},
    {"index": 1, "size": "2000 MiB", "diskId": "{11111111-2222-3333-4444-555555555555}", "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "basic-data"}]}]})";

// Disks 0 and 1, both MBR with one partition.
inline constexpr const char* kTwoMbr = R"({"disks": [
    {"index": 0, "size": "1000 MiB", "signature": 1001, "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"}]},
    {"index": 1, "size": "2000 MiB", "signature": 1002, "partitions": [
        {"offset": "1 MiB", "size": "200 MiB", "type": "ntfs"}]}]})";

// Runs the enumerator on a described machine and captures its log. The destructor checks for leaked handles
// and objects.
class EnumMachine : public testing::Test {
protected:
    ~EnumMachine() override {
        if (session_) {
            EXPECT_EQ(simulation().open_handles(), 0U);
            EXPECT_EQ(simulation().stale_handle_uses(), 0U);
            EXPECT_EQ(simulation().live_objects(), 0U);
        }
    }

    void Use(const std::string& json) { Use(machine::ParseDescription(json, "machine")); }
    void UseExample(const std::string& name) {
        Use(machine::LoadDescription(std::string(ORVANE_SOURCE_DIR) + "/examples/machines/" + name));
    }

    machine::Simulation& simulation() { return session_->simulation(); }
    machine::FaultPlan& faults() { return simulation().faults(); }
    machine::Disk& disk(std::size_t position) { return simulation().description().disks.at(position); }
    machine::Volume& volume(std::size_t position) { return simulation().description().volumes.at(position); }

    support::LoggerCapture log_;

private:
    void Use(machine::Description description) { session_.emplace(std::move(description)); }

    std::optional<machine::Session> session_;
};

}  // namespace enum_machine
