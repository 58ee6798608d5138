#pragma once

#include "common/windows.h"
#include "machine/description/description.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"

#include <winternl.h>

#include <string>
#include <utility>
#include <vector>

namespace machine_test {

inline machine::Description Parse(const std::string& json) {
    return machine::ParseDescription(json, "test.json");
}

// The function that a module redirected to the simulation gets from GetProcAddress.
template <class Function>
Function Bound(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(machine::SimulatedProcAddress(GetModuleHandleW(library), name)));
}

#define MACHINE_TEST_KERNEL(name) decltype(&::name) name = Bound<decltype(&::name)>(L"kernel32.dll", #name)

// The simulated kernel functions, bound as the library binds them.
struct Kernel {
    MACHINE_TEST_KERNEL(CreateFileW);
    MACHINE_TEST_KERNEL(CloseHandle);
    MACHINE_TEST_KERNEL(DeviceIoControl);
    MACHINE_TEST_KERNEL(FlushFileBuffers);
    MACHINE_TEST_KERNEL(WriteFile);
    MACHINE_TEST_KERNEL(FindFirstVolumeW);
    MACHINE_TEST_KERNEL(FindNextVolumeW);
    MACHINE_TEST_KERNEL(FindVolumeClose);
    MACHINE_TEST_KERNEL(GetVolumePathNamesForVolumeNameW);
    MACHINE_TEST_KERNEL(GetVolumeNameForVolumeMountPointW);
    MACHINE_TEST_KERNEL(GetVolumePathNameW);
    MACHINE_TEST_KERNEL(QueryDosDeviceW);
    MACHINE_TEST_KERNEL(GetLogicalDrives);
    MACHINE_TEST_KERNEL(GetDriveTypeW);
    MACHINE_TEST_KERNEL(GetDiskFreeSpaceW);
    MACHINE_TEST_KERNEL(GetDiskFreeSpaceExW);
    MACHINE_TEST_KERNEL(GetVolumeInformationW);

    HANDLE Open(const wchar_t* path, DWORD access = 0) const {
        return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                           nullptr);
    }

    // The results of a device control call with an output buffer of `size` bytes.
    struct Control {
        bool done = false;
        DWORD error = 0;
        DWORD returned = 0;
        std::vector<unsigned char> bytes;

        template <class T>
        T As(std::size_t offset = 0) const {
            T value{};
            if (offset + sizeof(T) <= bytes.size()) {
                memcpy(&value, bytes.data() + offset, sizeof(T));
            }
            return value;
        }
    };
    Control Ask(HANDLE handle, DWORD code, DWORD size) const {
        Control control;
        control.bytes.assign(size, 0xAA);
        SetLastError(0);
        control.done = DeviceIoControl(handle, code, nullptr, 0, control.bytes.data(), size,
                                       &control.returned, nullptr) != FALSE;
        control.error = GetLastError();
        return control;
    }
};

#undef MACHINE_TEST_KERNEL

// A simulation and its functions.
struct Machine {
    explicit Machine(const std::string& json) : simulation(Parse(json)) {}
    explicit Machine(machine::Description description) : simulation(std::move(description)) {}

    machine::Simulation simulation;
    Kernel kernel;
};

// A machine with a disk and a volume of each kind that most tests need.
inline std::string SmallMachine() {
    return R"({
        "disks": [
            {"index": 0, "size": "64 GiB", "style": "mbr", "signature": "0x1A2B3C4D", "partitions": [
                {"offset": "1 MiB", "size": "500 MiB", "type": "ntfs", "active": true},
                {"offset": "501 MiB", "size": "40 GiB", "type": "ntfs"}
            ]},
            {"index": 3, "size": "1 TiB", "style": "gpt", "diskId": "{11111111-2222-3333-4444-555555555555}",
             "partitions": [
                {"offset": "1 MiB", "size": "100 MiB", "type": "efi-system"},
                {"offset": "101 MiB", "size": "16 MiB", "type": "reserved"},
                {"offset": "117 MiB", "size": "900 GiB", "type": "basic-data"}
            ]}
        ],
        "volumes": [
            {"guid": "{00000000-0000-0000-0000-000000000001}", "partition": {"disk": 0, "number": 1},
             "label": "System Reserved"},
            {"guid": "{00000000-0000-0000-0000-000000000002}", "partition": {"disk": 0, "number": 2},
             "mountPoints": ["C:\\"], "label": "Windows", "serial": "0xCAFE0001", "free": "10 GiB"},
            {"guid": "{00000000-0000-0000-0000-000000000003}", "partition": {"disk": 3, "number": 3},
             "mountPoints": ["D:\\", "C:\\Data\\Archive\\"]},
            {"guid": "{00000000-0000-0000-0000-000000000004}", "driveType": "cdrom", "mountPoints": ["E:\\"],
             "media": false}
        ]
    })";
}

}  // namespace machine_test
