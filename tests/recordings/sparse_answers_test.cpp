// Machines on which only some of the answers tell a fact.

#include "cases/case_folder.h"
#include "machine/recorder/describe/describe.h"
#include "machine/recorder/describe/replay.h"
#include "machine/recorder/prove/proof.h"
#include "recordings/recording.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

const std::filesystem::path kExamples = ORVANE_SOURCE_DIR "/examples/machines";

// Of an answer to the layout control.
constexpr std::size_t kHeaderBytes = 48;
constexpr std::size_t kEntryBytes = 144;

std::string UnexplainedOf(const std::string& text) {
    return recordings::Unexplained(recordings::Record(machine::ParseDescription(text, "test")));
}

std::string UnexplainedWithDisk(const char* name, std::size_t disk, const std::string& call) {
    machine::Description machine = machine::LoadDescription(kExamples / name);
    machine.disks[disk].errors.codes["DeviceIoControl:" + call] = ERROR_INVALID_FUNCTION;
    return recordings::Unexplained(recordings::Record(machine));
}

std::string UnexplainedWithVolume(const char* name, std::size_t volume, const char* call,
                                  std::uint32_t error) {
    machine::Description machine = machine::LoadDescription(kExamples / name);
    machine.volumes[volume].errors.codes[call] = error;
    return recordings::Unexplained(recordings::Record(machine));
}

// Volumes do not tell of an extended partition with one logical one.
TEST(RecordedTable, OnlyTheOlderControlTellsIt_IsDescribedByThat) {
    EXPECT_EQ(UnexplainedWithDisk("bios-laptop", 0, "IOCTL_DISK_GET_DRIVE_LAYOUT_EX"), "");
}

TEST(RecordedTable, OnlyTheLayoutTellsThatADiskIsBlank_IsDescribed) {
    EXPECT_EQ(UnexplainedWithDisk("blank-disks", 1, "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX"), "");
    // 32 bytes: the geometry alone.
    EXPECT_EQ(
        UnexplainedOf(R"({"disks": [{"index": 0, "size": "1 GiB", "blank": true, "geometryBytes": 32}]})"),
        "");
}

// 56 bytes: the geometry and the partition record.
TEST(RecordedDisk, NoDetectionRecord_ItsChecksumIsDescribed) {
    EXPECT_EQ(UnexplainedOf(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr", "signature": 7,
                                           "checksum": 8, "geometryBytes": 56}]})"),
              "");
}

TEST(RecordedDisk, NoCylinders_AreDescribed) {
    EXPECT_EQ(UnexplainedOf(R"({"disks": [{"index": 0, "size": "1 GiB", "geometry": {"cylinders": 0}}]})"),
              "");
}

TEST(RecordedDisk, IdsAndChecksumsOfAnMbr_AreDescribed) {
    EXPECT_EQ(UnexplainedOf(R"({"disks": [{"index": 0, "size": "10 GiB", "style": "mbr", "signature": 7,
            "checksum": 8, "layoutChecksum": 9, "partitions": [
                {"offset": "1 MiB", "size": "1 GiB", "type": "ntfs", "id": "{11111111-2222-3333-4444-555555555555}"},
                {"offset": "2 GiB", "size": "8191 MiB", "type": "extended", "logical": [
                    {"offset": "2049 MiB", "size": "1 GiB", "type": "ntfs",
                     "id": "{21111111-2222-3333-4444-555555555555}"}]}]}],
            "volumes": [{"partition": {"disk": 0, "number": 2}}]})"),
              "");
}

TEST(RecordedDisk, IdAndChecksumsOfASuperFloppy_AreDescribed) {
    EXPECT_EQ(UnexplainedOf(R"({"disks": [{"index": 0, "size": "10 GiB", "checksum": 8, "layoutChecksum": 9,
            "superFloppy": {"type": "fat32", "id": "{11111111-2222-3333-4444-555555555555}"}}],
            "volumes": [{"unchecked": true, "extents": [{"disk": 0, "offset": 0, "length": "10 GiB"}]}]})"),
              "");
}

TEST(RecordedDisk, ServicePartitions_AreDescribed) {
    for (const char* style : {"mbr", "gpt"}) {
        const std::string type = style == std::string("mbr") ? "ntfs" : "basic-data";
        EXPECT_EQ(
            UnexplainedOf(R"({"disks": [{"index": 0, "size": "10 GiB", "style": ")" + std::string(style) +
                          R"(", "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": ")" + type +
                          R"(", "service": true}]}], "volumes": [{"partition": {"disk": 0, "number": 1}}]})"),
            "");
    }
}

// A user without rights cannot ask for the length.
TEST(RecordedDisk, OnlyItsPartitionTellsItsSize_IsDescribedByThat) {
    EXPECT_EQ(UnexplainedOf(R"({"disks": [{"index": 0, "size": "1 GiB", "openForReadingError": 5,
                                           "errors": {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX": 1}}]})"),
              "");
}

TEST(RecordedDisk, OnlyOpeningItForReadingBlocks_IsDescribedAsTheErrorOfThat) {
    const machine::Description machine =
        machine::ParseDescription(R"({"disks": [{"index": 0, "size": "1 GiB"}]})", "test");
    const recordings::Recording recording = recordings::Record(machine);
    recorder::Observations blocking;
    blocking.circumstances = recording.observations.circumstances;
    for (recorder::Observation observation : recording.observations.all()) {
        const bool opens = observation.question.call == "CreateFileW";
        if (observation.question.access != 0 && opens) {
            observation.answer = {};
            observation.answer.blocks = true;
        }
        if (observation.question.access == 0 || opens) {
            blocking.Add(observation);
        }
    }
    const machine::Description described = recorder::Describe(blocking);
    EXPECT_EQ(described.disks.at(0).open_for_reading_error, DWORD{ERROR_SEM_TIMEOUT});
    const auto replayed =
        recorder::Replay(described, blocking, [](std::size_t, const recorder::Question&) {});
    const auto findings = recorder::CompareAnswers(blocking, replayed);
    ASSERT_FALSE(findings.empty());
    for (const recorder::Finding& finding : findings) {
        EXPECT_EQ(finding.kind, recorder::Finding::Kind::kExplained) << finding.text;
    }
}

// One entry is told of four, and it is unused.
TEST(RecordedTable, BrokenOffAfterAnUnusedEntry_CanBeDescribed) {
    const machine::Description machine = machine::ParseDescription(
        R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr", "signature": 7, "partitions": [
            {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs", "slot": 2}]}]})",
        "test");
    const recordings::Recording recording = recordings::RecordAltered(
        machine, "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX", [](machine::Answer& answer) {
            answer.bytes.resize(std::min(answer.bytes.size(), kHeaderBytes + kEntryBytes));
            answer.returned = answer.bytes.size();
        });
    ASSERT_EQ(recording.machine.disks.size(), 1U);
    EXPECT_EQ(recording.machine.disks.front().signature, 7U);
}

// The first of three logical partitions was deleted: its boot record has only the link to the next one.
TEST(RecordedTable, EmptyBootRecord_KeepsThePartitionsBehind) {
    const machine::Description machine = machine::ParseDescription(
        R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr", "signature": 7, "partitions": [
            {"offset": "1 MiB", "size": "900 MiB", "type": "extended", "logical": [
                {"offset": "2 MiB", "size": "100 MiB", "type": "ntfs"},
                {"offset": "200 MiB", "size": "100 MiB", "type": "ntfs"},
                {"offset": "400 MiB", "size": "100 MiB", "type": "fat32"}]}]}]})",
        "test");
    const recordings::Recording recording = recordings::RecordAltered(
        machine, "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX", [](machine::Answer& answer) {
            constexpr std::size_t kFifthEntry = kHeaderBytes + 4 * kEntryBytes;
            if (answer.bytes.size() >= kFifthEntry + kEntryBytes) {
                std::memset(answer.bytes.data() + kFifthEntry, 0, kEntryBytes);
            }
        });
    std::vector<std::uint64_t> offsets;
    for (const machine::Partition& partition : recording.machine.disks.front().partitions) {
        if (partition.number != 0) {
            offsets.push_back(partition.offset >> 20);
        }
    }
    EXPECT_EQ(offsets, (std::vector<std::uint64_t>{200, 400}));
}

// The volumes behind it are known from the directories, which have another order.
TEST(RecordedSearch, BreaksOffAtAVolume_KeepsTheOrder) {
    for (const char* name : {"blank-disks", "shadow-copies"}) {
        const std::size_t count = machine::LoadDescription(kExamples / name).volumes.size();
        for (std::size_t i = 0; i < count; ++i) {
            SCOPED_TRACE(name + (" volume " + std::to_string(i)));
            EXPECT_EQ(UnexplainedWithVolume(name, i, "FindNextVolumeW", ERROR_ACCESS_DENIED), "");
        }
    }
}

constexpr const char* kThreeVolumes = R"({
    "disks": [{"index": 0, "size": "10 GiB", "style": "mbr", "signature": 7, "partitions": [
        {"offset": "1 MiB", "size": "1 GiB", "type": "ntfs"}, {"offset": "2 GiB", "size": "1 GiB", "type": "ntfs"},
        {"offset": "4 GiB", "size": "1 GiB", "type": "ntfs"}]}],
    "volumes": [
        {"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"]},
        {"partition": {"disk": 0, "number": 2}, "mountPoints": ["D:\\"],
         "aliases": [{"guid": "{11111111-2222-3333-4444-555555555555}", "enumerated": false}]},
        {"partition": {"disk": 0, "number": 3}, "mountPoints": ["E:\\"]}]})";

TEST(RecordedSearch, BreaksOffBehindAVolumeWithAHiddenName_KeepsItHidden) {
    machine::Description machine = machine::ParseDescription(kThreeVolumes, "test");
    machine.volumes[2].errors.codes["FindNextVolumeW"] = ERROR_ACCESS_DENIED;
    EXPECT_EQ(recordings::Unexplained(recordings::Record(machine)), "");
}

// No object has an error at the end of the search, and the search for a single name does not fail.
TEST(RecordedSearch, FailsBehindTheLastVolume_IsTheOnlyDifference) {
    const machine::Description machine = machine::ParseDescription(kThreeVolumes, "test");
    const recordings::Recording recording =
        recordings::RecordAltered(machine, "FindNextVolumeW", [](machine::Answer& answer) {
            if (answer.failed && answer.error == ERROR_NO_MORE_FILES) {
                answer.error = ERROR_ACCESS_DENIED;
            }
        });
    EXPECT_EQ(recordings::Unexplained(recording),
              "FindFirstVolumeW, 255 and 260 characters: FindNextVolumeW error 5 here, success there\n");
}

constexpr const char* kVolumeWithTwoNames = R"({
    "disks": [{"index": 0, "size": "10 GiB", "style": "gpt", "partitions": [
        {"offset": "1 MiB", "size": "1 GiB", "type": "basic-data"},
        {"offset": "2 GiB", "size": "1 GiB", "type": "basic-data"}]}],
    "volumes": [
        {"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"]},
        {"partition": {"disk": 0, "number": 2}, "mountPoints": ["C:\\Data\\"],
         "guid": "{51111111-2222-3333-4444-555555555555}", "aliases": ["{11111111-2222-3333-4444-555555555555}"]}]})";

TEST(RecordedVolume, OnlyItsFolderTellsItsOwnName_HasThatName) {
    EXPECT_EQ(UnexplainedOf(kVolumeWithTwoNames), "");
}

// Its drive letter leads to one device, its volume name to another one.
TEST(RecordedVolume, OnlyItsDriveTellsItsName_IsOneVolume) {
    EXPECT_EQ(UnexplainedOf(R"({
        "disks": [{"index": 0, "size": "10 GiB", "style": "gpt", "partitions": [
            {"offset": "1 MiB", "size": "1 GiB", "type": "basic-data"}]}],
        "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["F:\\"],
                     "device": "\\Device\\FibraVolume7", "linkTarget": "\\Device\\Fibra7",
                     "errors": {"GetVolumePathNamesForVolumeNameW": 1}}]})"),
              "");
}

TEST(RecordedNames, DosDeviceThatIsDenied_IsDescribed) {
    EXPECT_EQ(UnexplainedOf(R"({"dosDevices": {"Tape0": {"target": "\\Device\\Tape0",
                                                    "errors": {"QueryDosDeviceW": 5}}}})"),
              "");
}

// Made by `subst`: the drive is no device, but a folder of another one.
TEST(RecordedVolume, DriveOfAFolder_IsAVolumeOfItsOwn) {
    EXPECT_EQ(UnexplainedOf(R"({"volumes": [{"device": "\\Device\\Folder", "guid": null, "unchecked": true,
            "mountPoints": ["S:\\"], "label": "System", "errors": {"CreateFileW": 123}}],
            "dosDevices": {"S:": "\\??\\C:\\Projects"}})"),
              "");
}

TEST(RecordedVolume, OnlyTheOlderControlTellsItsPartition_IsDescribedByThat) {
    EXPECT_EQ(
        UnexplainedWithVolume("encrypted-container", 2, "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX",
                              ERROR_INVALID_FUNCTION),
        "");
}

// It cannot be opened, so that no length tells of a medium.
TEST(RecordedVolume, OnlyItsSpaceTellsOfAMedium_HasOne) {
    EXPECT_EQ(UnexplainedWithVolume("foreign-file-system", 3, "GetVolumeInformationW", ERROR_NOT_READY), "");
}

TEST(RecordedVolume, OnlyItsSpaceTellsOfAFileSystem_HasOne) {
    EXPECT_EQ(
        UnexplainedWithVolume("uefi-workstation", 2, "GetVolumeInformationW", ERROR_UNRECOGNIZED_VOLUME), "");
}

TEST(RecordedVolume, ControlThatFindsEveryBufferTooSmall_IsDescribed) {
    for (const std::uint32_t error : {ERROR_INSUFFICIENT_BUFFER, ERROR_MORE_DATA}) {
        EXPECT_EQ(
            UnexplainedWithVolume("uefi-workstation", 2, "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO", error),
            "");
    }
}

}  // namespace
