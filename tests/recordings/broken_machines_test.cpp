// Machines whose answers are false. The recorder neither crashes nor goes on without end, and what it writes
// can be read. `make test` runs a sample; ORVANE_RECORDING_STRIDE=1 runs all of them.

#include "machine/recorder/describe/describe.h"
#include "machine/recorder/observe/ask.h"
#include "machine/recorder/observe/observations_file.h"
#include "machine/recorder/observe/observe.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"
#include "recordings/stride.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>

namespace {

using machine::Answer;

struct Lie {
    const char* name;
    std::function<void(Answer&)> action;
};

void Garbage(Answer& answer) {
    static std::mt19937 random(20261122);
    for (std::uint8_t& byte : answer.bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
}

// Each byte of a count or length in the first 64 bytes becomes large.
void HugeNumbers(Answer& answer) {
    for (std::size_t i = 0; i < std::min<std::size_t>(answer.bytes.size(), 64); ++i) {
        answer.bytes[i] = 0xFF;
    }
}

// QueryDosDeviceW returns the length as its result; the result of a search is a handle, and stays.
void HugeLength(Answer& answer) {
    constexpr std::uint64_t kMostCharacters = 65536;
    answer.returned = 0xFFFFFFF0;
    answer.value = answer.value == 0 || answer.value > kMostCharacters ? answer.value : 0xFFFFFFF0;
}

const Lie kLies[] = {
    {"garbage", Garbage},
    {"huge numbers", HugeNumbers},
    {"huge length", HugeLength},
    {"no length", [](Answer& answer) { answer.returned = 0; }},
    {"no bytes", [](Answer& answer) { answer.bytes.clear(); }},
    {"half of the bytes", [](Answer& answer) { answer.bytes.resize(answer.bytes.size() / 2); }},
    {"failure with bytes",
     [](Answer& answer) {
         answer.failed = true;
         answer.error = 31;
     }},
};

constexpr const char* kCalls[] = {
    "QueryDosDeviceW",
    "GetVolumePathNamesForVolumeNameW",
    "GetVolumeNameForVolumeMountPointW",
    "FindFirstVolumeW",
    "FindNextVolumeW",
    "GetVolumeInformationW",
    "GetDiskFreeSpaceW",
    "GetDiskFreeSpaceExW",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX",
    "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO",
    "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX",
    "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER",
    "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS",
    "ZwQueryDirectoryObject",
};

recorder::Observations ObserveLying(const std::filesystem::path& folder, const char* call, const Lie& lie) {
    machine::Session session(machine::LoadDescription(folder));
    session.simulation().faults().Alter(call, lie.action);
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    recorder::Observations observations = recorder::Observe(
        [&](const recorder::Question& question) { return recorder::Ask(functions, question); },
        [](std::size_t, const recorder::Question&) {});
    EXPECT_GT(session.simulation().faults().hits(), 0U);
    EXPECT_EQ(session.simulation().open_handles(), 0U);
    return observations;
}

TEST(BrokenMachine, FalseAnswers_AreRecordedAndDescribed) {
    constexpr std::size_t kSample = 5;
    std::size_t number = 0;
    for (const char* machine : {"uefi-workstation", "bios-laptop"}) {
        for (const char* call : kCalls) {
            for (const Lie& lie : kLies) {
                if (number++ % recordings::Stride(kSample) != 0) {
                    continue;
                }
                SCOPED_TRACE(std::string(machine) + ", " + call + ", " + lie.name);
                const auto observations = ObserveLying(
                    std::filesystem::path(ORVANE_SOURCE_DIR "/examples/machines") / machine, call, lie);
                const std::string text = recorder::ObservationsText(observations);
                EXPECT_EQ(recorder::ObservationsText(recorder::ParseObservations(text, "test")), text);
                // Describing reads what it wrote.
                EXPECT_NO_THROW(machine::ParseDescription(
                    machine::WriteDescription(recorder::Describe(observations)), "test"));
            }
        }
    }
}

}  // namespace
