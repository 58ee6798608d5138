#include "machine/recorder/describe/describe.h"

#include "machine/recorder/describe/facts.h"

#include <algorithm>

namespace recorder {
namespace {

// As the format assumes without an answer: a machine that has disks, but no GPT disk, was started by a BIOS.
std::uint32_t AssumedFirmware(const std::vector<machine::Disk>& disks) {
    const bool gpt = std::any_of(disks.begin(), disks.end(),
                                 [](const machine::Disk& disk) { return disk.style == PARTITION_STYLE_GPT; });
    return gpt || disks.empty() ? 2 : 1;
}

// The machine as its reader sees it: what the format cannot say is gone, and what it derives is there.
machine::Description AsRead(const machine::Description& description) {
    return machine::ParseDescription(machine::WriteDescription(description), "the recording");
}

}  // namespace

machine::Description Describe(const Observations& observations) {
    machine::Description description;
    constexpr std::uint32_t kPlain = 1;
    constexpr std::uint32_t kRedacted = 2;
    description.recording = observations.circumstances.redacted ? kRedacted : kPlain;
    description.current_drive = CurrentDrive(observations);
    description.disks = DescribedDisks(observations);
    description = AsRead(description);
    DescribeVolumes(observations, description);
    description = AsRead(description);
    DescribeNames(observations, description);
    description.firmware.type = AssumedFirmware(description.disks);
    DescribeFirmware(observations, description);
    DescribeRegistry(observations, description);
    DescribeXmlComponent(observations, description);
    DescribeMissing(observations, description);
    DescribeWmi(observations, description);
    // An error can hide another one, for example that of opening a device.
    constexpr int kRounds = 3;
    bool changed = true;
    for (int round = 0; round < kRounds && changed; ++round) {
        description = AsRead(description);
        changed = DescribeErrors(observations, description);
    }
    return description;
}

}  // namespace recorder
