#pragma once

#include "common/enumdisk/fixed_volumes.h"
#include "support/each_of.h"
#include "unit/common/enumdisk/enum_machine.h"

#include <algorithm>
#include <string>
#include <vector>

// A machine with two fixed volumes on one MBR disk: C: and one without a letter.
namespace fixed_machine {

inline constexpr const wchar_t* kFirst = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\";
inline constexpr const wchar_t* kFirstDevice = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}";
inline constexpr const wchar_t* kSecond = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\";
inline constexpr const wchar_t* kSecondDevice = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}";

inline constexpr const char* kMachine = R"({"disks": [
    {"index": 0, "size": "1000 MiB", "signature": 439041101, "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs", "active": true},
        {"offset": "101 MiB", "size": "200 MiB", "type": "ntfs"}]}],
    "volumes": [
        {"guid": "{00000000-0000-0000-0000-000000000001}", "partition": {"disk": 0, "number": 1},
         "device": "\\Device\\HarddiskVolume1", "mountPoints": ["C:\\"], "label": "System", "serial": 305419896,
         "flags": 4660, "sectorsPerCluster": 8, "bytesPerSector": 512, "totalBytes": 100000000,
         "freeBytes": 40000000, "freeBytesToCaller": 30000000},
        {"guid": "{00000000-0000-0000-0000-000000000002}", "partition": {"disk": 0, "number": 2},
         "device": "\\Device\\HarddiskVolume2"}]})";

class FixedMachine : public enum_machine::EnumMachine {
protected:
    FixedMachine() { Use(kMachine); }

    bool Get() { return getFixedVolumes(volumes_); }

    static std::string FirstName() { return "\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\"; }

    std::vector<std::wstring> Names() const { return support::EachOf(volumes_, &::Volume::Name); }

    // The paths that were opened, except physical drives.
    std::vector<std::wstring> OpenedVolumes() {
        std::vector<std::wstring> paths = simulation().calls().ObjectsOf("CreateFileW");
        std::erase_if(paths,
                      [](const std::wstring& path) { return path.starts_with(L"\\\\.\\PhysicalDrive"); });
        return paths;
    }

    std::vector<::Volume> volumes_;
};

}  // namespace fixed_machine
