// The cases with one more error that a description can state on an object. `make test` runs a sample;
// ORVANE_RECORDING_STRIDE=1 runs all of them.

#include "cases/case_folder.h"
#include "recordings/recording.h"
#include "recordings/stride.h"

#include <gmock/gmock.h>

#include <clocale>
#include <functional>

namespace {

const std::filesystem::path kExamples = ORVANE_SOURCE_DIR "/examples/machines";

// Not found, access denied, not ready, device gone, invalid function: of each family.
constexpr std::uint32_t kWin32[] = {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_NOT_READY,
                                    ERROR_DEVICE_NOT_CONNECTED, ERROR_INVALID_FUNCTION};
constexpr std::uint32_t kNative[] = {0xC0000034, 0xC0000022, 0xC00000A3, 0xC000009D, 0xC0000010};
constexpr std::uint32_t kCom[] = {0x80041002, 0x80041003, 0x80070015, 0x8007048F, 0x80041024};

constexpr const char* kDiskCalls[] = {
    "CreateFileW",
    "DeviceIoControl",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX",
    "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO",
    "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO",
    "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX",
    "DeviceIoControl:IOCTL_DISK_IS_WRITABLE",
    "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER",
    "QueryDosDeviceW",
};
constexpr const char* kVolumeCalls[] = {
    "CreateFileW",
    "DeviceIoControl",
    "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS",
    "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO",
    "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO",
    "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX",
    "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER",
    "FindFirstVolumeW",
    "FindNextVolumeW",
    "GetDiskFreeSpaceW",
    "GetDiskFreeSpaceExW",
    "GetDriveTypeW",
    "GetVolumeInformationW",
    "GetVolumeNameForVolumeMountPointW",
    "GetVolumePathNamesForVolumeNameW",
    "QueryDosDeviceW",
};
constexpr const char* kDirectoryCalls[] = {"ZwOpenDirectoryObject", "ZwQueryDirectoryObject"};
constexpr const char* kClassCalls[] = {"IWbemServices::ExecQuery", "IEnumWbemClassObject::Reset",
                                       "IEnumWbemClassObject::Next", "IWbemClassObject::Get"};

struct SingleFault {
    std::filesystem::path folder;
    std::string name;
    std::function<machine::CallErrors&(machine::Description&)> errors;
    std::string call;
    std::uint32_t code;
};

machine::CallErrors& ErrorsOfDirectory(machine::Description& machine, const wchar_t* path) {
    for (machine::ObjectDirectory& directory : machine.directories) {
        if (directory.path == path) {
            return directory.errors;
        }
    }
    machine.directories.push_back({path, {}, {}, 0});
    return machine.directories.back().errors;
}

template <std::size_t Calls, std::size_t Codes, class Errors>
void AddFaults(std::vector<SingleFault>& faults, const std::filesystem::path& folder,
               const std::string& object, const char* const (&calls)[Calls],
               const std::uint32_t (&codes)[Codes], Errors errors) {
    for (const char* call : calls) {
        for (const std::uint32_t code : codes) {
            faults.push_back({folder, object + " " + call + " " + std::to_string(code), errors, call, code});
        }
    }
}

std::vector<SingleFault> FaultsOf(const std::filesystem::path& folder) {
    std::vector<SingleFault> faults;
    const machine::Description machine = machine::LoadDescription(folder);
    const std::string name = folder.filename().string();
    for (std::size_t i = 0; i < machine.disks.size(); ++i) {
        AddFaults(faults, folder, name + " disk " + std::to_string(i), kDiskCalls, kWin32,
                  [i](machine::Description& own) -> machine::CallErrors& { return own.disks[i].errors; });
    }
    for (std::size_t i = 0; i < machine.volumes.size(); ++i) {
        AddFaults(faults, folder, name + " volume " + std::to_string(i), kVolumeCalls, kWin32,
                  [i](machine::Description& own) -> machine::CallErrors& { return own.volumes[i].errors; });
    }
    for (const wchar_t* path : {L"\\Device", L"\\GLOBAL??"}) {
        AddFaults(faults, folder, name + (path[1] == L'D' ? " devices" : " links"), kDirectoryCalls, kNative,
                  [path](machine::Description& own) -> machine::CallErrors& {
                      return ErrorsOfDirectory(own, path);
                  });
    }
    for (const auto& [key, unused] : machine.wmi) {
        AddFaults(
            faults, folder, name + " " + std::string(key.begin(), key.end()), kClassCalls, kCom,
            [key = key](machine::Description& own) -> machine::CallErrors& { return own.wmi[key].errors; });
    }
    return faults;
}

// One of so many runs in `make test`.
constexpr std::size_t kSample = 411;

class RecordedFault : public testing::TestWithParam<std::filesystem::path> {
protected:
    RecordedFault() { std::setlocale(LC_CTYPE, ""); }
    ~RecordedFault() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_P(RecordedFault, Recording_IsProvedAndReplaysTheMachine) {
    const std::vector<SingleFault> faults = FaultsOf(GetParam());
    const std::filesystem::path scratch =
        std::filesystem::path(ORVANE_BINARY_DIR "/recordings/faults") / GetParam().filename();
    const std::size_t stride = recordings::Stride(kSample);
    // The sample of each machine begins elsewhere.
    const std::size_t first = GetParam().filename().string().size() * 31 % std::min(stride, faults.size());
    for (std::size_t i = first; i < faults.size(); i += stride) {
        const SingleFault& fault = faults[i];
        SCOPED_TRACE(fault.name);
        machine::Description machine = machine::LoadDescription(fault.folder);
        fault.errors(machine).codes[fault.call] = fault.code;
        const recordings::Recording recording = recordings::Record(machine);
        EXPECT_EQ(recordings::Unexplained(recording), "");
        recordings::WriteFolder(scratch / "original", machine::WriteDescription(machine), fault.folder);
        recordings::WriteFolder(scratch / "recorded", recording.text, fault.folder);
        EXPECT_THAT(recordings::DifferentOutputs(scratch / "original", scratch / "recorded"),
                    testing::Each(recordings::OnlyByWriting(machine)));
    }
}

INSTANTIATE_TEST_SUITE_P(Machines, RecordedFault, testing::ValuesIn(cases::FoldersOf(kExamples)),
                         [](const auto& folder) { return recordings::TestName(folder.param); });

}  // namespace
