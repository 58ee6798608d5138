// A described machine that answers otherwise than the recorded one is found and named.

#include "machine/recorder/describe/replay.h"
#include "machine/recorder/prove/proof.h"
#include "recordings/recording.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

recordings::Recording Workstation() {
    return recordings::Record(
        machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/uefi-workstation"));
}

std::vector<std::string> Lines(const recordings::Recording& recording, const machine::Description& changed) {
    std::vector<std::string> lines;
    const auto replayed =
        recorder::Replay(changed, recording.observations, [](std::size_t, const recorder::Question&) {});
    for (const recorder::Finding& finding : recorder::CompareAnswers(recording.observations, replayed)) {
        lines.push_back(recorder::LineOf(finding));
    }
    return lines;
}

TEST(Disagreement, UnchangedMachine_HasNone) {
    const recordings::Recording recording = Workstation();
    EXPECT_THAT(Lines(recording, recording.machine), IsEmpty());
}

TEST(Disagreement, CallThatFails_IsNamedWithItsObjectSizesAndErrors) {
    const recordings::Recording recording = Workstation();
    machine::Description changed = recording.machine;
    changed.disks[1].errors.codes["DeviceIoControl:IOCTL_DISK_IS_WRITABLE"] = 19;
    EXPECT_THAT(
        Lines(recording, changed),
        ElementsAre(
            "unexplained: IOCTL_DISK_IS_WRITABLE on PhysicalDrive1: success here, error 19 there",
            "unexplained: IOCTL_DISK_IS_WRITABLE on PhysicalDrive1, no access: success here, error 19 "
            "there",
            "unexplained: IOCTL_DISK_IS_WRITABLE on \\\\?\\GLOBALROOT\\Device\\Harddisk1\\DR1: success "
            "here, error 19 there",
            "unexplained: IOCTL_DISK_IS_WRITABLE on \\\\?\\GLOBALROOT\\Device\\Harddisk1\\DR1, no "
            "access: success here, error 19 there"));
}

TEST(Disagreement, SameCallWithSeveralSizes_IsOneLine) {
    const recordings::Recording recording = Workstation();
    machine::Description changed = recording.machine;
    changed.volumes[0].max_component_length += 1;
    EXPECT_THAT(
        Lines(recording, changed),
        ElementsAre(
            "unexplained: GetVolumeInformationW on \\\\?\\GLOBALROOT\\Device\\HarddiskVolume1\\, 255 and 260 "
            "characters: maxComponentLength 255 here, 256 there",
            "unexplained: GetVolumeInformationW on \\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a01}\\, "
            "255 "
            "and 260 characters: maxComponentLength 255 here, 256 there"));
}

TEST(Disagreement, Property_IsNamed) {
    const recordings::Recording recording = Workstation();
    machine::Description changed = recording.machine;
    for (machine::WmiProperty& property : changed.wmi[L"WIN32_PROCESSOR"].instances.front()) {
        if (property.name == L"MaxClockSpeed") {
            property.value.number = 1;
        }
    }
    EXPECT_THAT(
        Lines(recording, changed),
        ElementsAre(
            "unexplained: IWbemServices::ExecQuery on Win32_Processor: MaxClockSpeed VT_I4 3600 here, "
            "VT_I4 1 there"));
}

TEST(Disagreement, AnswerThatDidNotCome_IsExplainedByAnErrorOfTheDescription) {
    recordings::Recording recording = Workstation();
    recorder::Observations blocked;
    for (recorder::Observation observation : recording.observations.all()) {
        if (observation.question.call == "CreateFileW" &&
            observation.question.object == L"\\\\.\\PhysicalDrive1") {
            observation.answer = {};
            observation.answer.blocks = true;
            blocked.Add(observation);
        }
    }
    recording.observations = blocked;
    machine::Description changed = recording.machine;
    constexpr std::uint32_t kTimedOut = 121;  // with which a described call answers that does not come back
    changed.disks[1].errors.codes["CreateFileW"] = kTimedOut;
    EXPECT_THAT(
        Lines(recording, changed),
        ElementsAre("explained: CreateFileW on PhysicalDrive1: no answer here, error 121 there",
                    "explained: CreateFileW on PhysicalDrive1, no access: no answer here, error 121 there"));
}

TEST(OutputComparison, ChangedLines_AreShownAndThoseThatChangeByThemselvesApart) {
    const std::string here = "a\n  <TotalFreeSpaces>1</TotalFreeSpaces>\nb\n";
    const std::string there = "a\n  <TotalFreeSpaces>2</TotalFreeSpaces>\nc\n";
    std::vector<std::string> lines;
    for (const recorder::Finding& finding : recorder::CompareOutputs("format 3", here, there)) {
        lines.push_back(recorder::LineOf(finding));
    }
    EXPECT_THAT(lines,
                ElementsAre("changes by itself: format 3, only here:   <TotalFreeSpaces>1</TotalFreeSpaces>",
                            "unexplained: format 3, only here: b",
                            "changes by itself: format 3, only there:   <TotalFreeSpaces>2</TotalFreeSpaces>",
                            "unexplained: format 3, only there: c"));
}

}  // namespace
