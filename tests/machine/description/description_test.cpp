#include "machine/description/text.h"
#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>

namespace machine_test {
namespace {

struct Refusal {
    const char* json;
    const char* path;
    const char* reason;  // expected in the error message
};

std::ostream& operator<<(std::ostream& stream, const Refusal& refusal) {
    return stream << refusal.json;
}

class BadDescription : public testing::TestWithParam<Refusal> {};

TEST_P(BadDescription, IsRefusedWithFilePathAndReason) {
    try {
        Parse(GetParam().json);
        FAIL() << "must be refused";
    } catch (const machine::DescriptionError& error) {
        EXPECT_EQ(error.file(), "test.json");
        EXPECT_EQ(error.path(), GetParam().path);
        EXPECT_NE(error.reason().find(GetParam().reason), std::string::npos) << error.reason();
        const std::string shown = error.path().empty() ? "/" : error.path();
        EXPECT_EQ(std::string(error.what()), "test.json: " + shown + ": " + error.reason());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Documents, BadDescription,
    testing::Values(
        Refusal{"{", "", "parse error"}, Refusal{"[]", "", "must be an object"},
        Refusal{R"({"disks": [], "disks": []})", "", "\"disks\" stands twice"},
        Refusal{R"({"volumes": [{"extents": [], "label": "a", "label": "b"}]})", "", "\"label\""},
        Refusal{R"({"diskz": []})", "/diskz", "not a known key"},
        Refusal{R"({"a/b~c": 1})", "/a~1b~0c", "not a known key"},
        Refusal{R"({"name": 1})", "/name", "must be text"},
        Refusal{R"({"disks": {}})", "/disks", "must be a list"},
        Refusal{R"({"currentDrive": "C:"})", "/currentDrive", "drive root"},
        Refusal{R"({"missing": [1]})", "/missing/0", "must be text"},
        Refusal{R"({"errors": {"CreateFileA": 5}})", "/errors/CreateFileA", "no call"},
        Refusal{R"({"errors": {"DeviceIoControl:IOCTL_NONE": 5}})", "/errors/DeviceIoControl:IOCTL_NONE",
                "no call"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "errors": {"GetDriveTypeW": 5}}]})",
                "/disks/0/errors/GetDriveTypeW", "no call that can fail here"},
        Refusal{R"({"volumes": [{"extents": [], "errors": {"ZwClose": 5}}]})", "/volumes/0/errors/ZwClose",
                "no call that can fail here"},
        Refusal{R"({"wmi": {"A": {"errors": {"CreateFileW": 5}}}})", "/wmi/A/errors/CreateFileW",
                "no call that can fail here"},
        Refusal{R"({"directories": {"\\Device": {"errors": {"CreateFileW": 5}}}})",
                "/directories/\\Device/errors/CreateFileW", "no call that can fail here"},
        Refusal{R"({"errors": {"CreateFileW": 0}})", "/errors/CreateFileW", "success"},
        Refusal{R"({"errors": {"CreateFileW": -5}})", "/errors/CreateFileW", "whole number"},
        Refusal{R"({"firmware": {"type": "EFI"}})", "/firmware/type", "none of unknown, bios, uefi"},
        Refusal{R"({"dosDevices": {"a\\b": "c"}})", "/dosDevices/a\\b", "without a backslash"},
        Refusal{R"({"directories": {"Device": {}}})", "/directories/Device", "begins with a backslash"},
        Refusal{R"({"registry": {"\\SYSTEM": {}}})", "/registry/\\SYSTEM", "without a backslash"},
        Refusal{R"({"registry": {"A": {"v": {"type": "REG_BINARY", "value": "0"}}}})", "/registry/A/v/value",
                "hexadecimal"},
        Refusal{R"({"wmi": {"A": [{"B": {"type": 9, "value": 1}}]}})", "/wmi/A/0/B/type",
                "no type of a property"},
        Refusal{R"({"wmi": {"A": [{"B": {"type": "VT_ARRAY|VT_UI1", "value": [256]}}]}})",
                "/wmi/A/0/B/value/0", "does not fit"},
        Refusal{R"({"wmi": {"A": [{"B": [1, "two"]}]}})", "/wmi/A/0/B/1", "number"},
        Refusal{R"({"registry": {"A": {"v": {"type": "REG_SZ"}}}})", "/registry/A/v", "lacks \"value\""}));

INSTANTIATE_TEST_SUITE_P(
    Disks, BadDescription,
    testing::Values(
        Refusal{R"({"disks": [{"size": 512}]})", "/disks/0", "lacks \"index\""},
        Refusal{R"({"disks": [{"index": 0}]})", "/disks/0", "lacks \"size\""},
        Refusal{R"({"disks": [{"index": 4294967296, "size": 1}]})", "/disks/0/index", "not be more than"},
        Refusal{R"({"disks": [{"index": 0, "size": 512}, {"index": 0, "size": 512}]})", "/disks/1/index",
                "another disk"},
        Refusal{R"({"disks": [{"index": 0, "size": "1 GIB"}]})", "/disks/0/size", "100 MiB"},
        Refusal{R"({"disks": [{"index": 0, "size": "big"}]})", "/disks/0/size", "100 MiB"},
        Refusal{R"({"disks": [{"index": 0, "size": "99999999999 TiB"}]})", "/disks/0/size", "too large"},
        Refusal{R"({"disks": [{"index": 0, "size": 9223372036854775808}]})", "/disks/0/size",
                "not be more than"},
        Refusal{R"({"disks": [{"index": 0, "size": 1.5}]})", "/disks/0/size", "whole number"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "bytesPerSector": 500}]})", "/disks/0/bytesPerSector",
                "512"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "style": "efi"}]})", "/disks/0/style", "mbr, gpt, raw"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "partitions": []}]})", "/disks/0/partitions", "style"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "diskId": "x"}]})", "/disks/0/diskId", "GUID"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "wmi": 3}]})", "/disks/0/wmi", "must be an object"},
        Refusal{R"({"disks": [{"index": 0, "size": 1, "detection": {"type": "bios"}}]})",
                "/disks/0/detection/type", "none of"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "partitions": [
                {"offset": "1 MiB", "size": "10 MiB", "type": "ntfs"}]}]})",
                "/disks/0/partitions", "beyond the disk"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "partitions": [
                {"offset": "1 MiB", "size": "3 MiB", "type": "ntfs"},
                {"offset": "3 MiB", "size": "3 MiB", "type": "ntfs"}]}]})",
                "/disks/0/partitions", "overlap"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "partitions": [
                {"offset": "1 MiB", "size": "3 MiB", "type": 0}]}]})",
                "/disks/0/partitions/0/type", "0x01"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "partitions": [
                {"offset": "1 MiB", "size": "3 MiB", "type": "ntfs", "slot": 5}]}]})",
                "/disks/0/partitions/0/slot", "not be more than 4"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "partitions": [
                {"offset": "1 MiB", "size": "1 MiB", "type": 7}, {"offset": "2 MiB", "size": "1 MiB", "type": 7},
                {"offset": "3 MiB", "size": "1 MiB", "type": 7}, {"offset": "4 MiB", "size": "1 MiB", "type": 7},
                {"offset": "5 MiB", "size": "1 MiB", "type": 7}]}]})",
                "/disks/0/partitions/4", "fifth"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "partitions": [
                {"offset": "1 MiB", "size": "1 MiB", "type": 7, "logical": []}]}]})",
                "/disks/0/partitions/0/logical", "extended"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "gpt", "partitions": [
                {"offset": "1 MiB", "size": "1 MiB", "type": "ntfs"}]}]})",
                "/disks/0/partitions/0/type", "GUID"},
        Refusal{R"({"disks": [{"index": 0, "size": "10 MiB", "style": "gpt", "partitions": [
                {"offset": "1 MiB", "size": "1 MiB", "type": "basic-data",
                 "name": "0123456789012345678901234567890123456"}]}]})",
                "/disks/0/partitions/0/name", "36"}));

INSTANTIATE_TEST_SUITE_P(
    Volumes, BadDescription,
    testing::Values(
        Refusal{R"({"volumes": [{}]})", "/volumes/0", "needs \"partition\" or \"extents\""},
        Refusal{R"({"volumes": [{"partition": {"disk": 0, "number": 1}}]})", "/volumes/0/partition/disk",
                "no described disk"},
        Refusal{R"({"disks": [{"index": 0, "size": 512, "style": "mbr"}],
                    "volumes": [{"partition": {"disk": 0, "number": 1}}]})",
                "/volumes/0/partition/number", "no partition"},
        Refusal{R"({"volumes": [{"extents": [{"disk": 4, "offset": 0, "length": 1}]}]})", "/volumes/0",
                "disk 4"},
        Refusal{R"({"disks": [{"index": 0, "size": 512}],
                    "volumes": [{"extents": [{"disk": 0, "offset": 512, "length": 1}]}]})",
                "/volumes/0", "beyond"},
        Refusal{R"({"volumes": [{"extents": [], "partition": {}}]})", "/volumes/0/extents", "\"partition\""},
        Refusal{R"({"volumes": [{"extents": [], "guid": "{12}"}]})", "/volumes/0/guid", "GUID"},
        Refusal{R"({"volumes": [{"extents": [], "device": "HarddiskVolume1"}]})", "/volumes/0/device",
                "device name"},
        Refusal{R"({"volumes": [{"extents": [], "mountPoints": ["C:"]}]})", "/volumes/0/mountPoints/0",
                "backslash"},
        Refusal{R"({"volumes": [{"extents": [], "mountPoints": ["Data\\"]}]})", "/volumes/0/mountPoints/0",
                "drive root"},
        Refusal{
            R"({"volumes": [{"extents": [], "mountPoints": ["C:\\"]}, {"extents": [], "mountPoints": ["c:\\"]}]})",
            "/volumes/1", "another volume"},
        Refusal{
            R"({"volumes": [{"extents": [], "device": "\\Device\\X"}, {"extents": [], "device": "\\device\\x"}]})",
            "/volumes/1", "another volume"},
        Refusal{R"({"volumes": [{"extents": [], "driveType": "disk"}]})", "/volumes/0/driveType", "none of"},
        Refusal{R"({"volumes": [{"extents": [], "length": "1 MiB", "freeClusters": 300}]})", "/volumes/0",
                "more free than total"},
        Refusal{R"({"volumes": [{"extents": [], "bytesPerSector": 0}]})", "/volumes/0/bytesPerSector", "0"}));

INSTANTIATE_TEST_SUITE_P(
    Wmi, BadDescription,
    testing::Values(Refusal{R"({"wmi": {"A": 5}})", "/wmi/A", "must be a list"},
                    Refusal{R"({"wmi": {"A": [{"B": 4294967295}]}})", "/wmi/A/0/B", "does not fit"},
                    Refusal{R"({"wmi": {"A": [{"B": {"type": "VT_UI2", "value": -1}}]}})", "/wmi/A/0/B/value",
                            "does not fit"},
                    Refusal{R"({"wmi": {"A": [{"B": {"type": "VT_UI8", "value": -1}}]}})", "/wmi/A/0/B/value",
                            "whole number of 0 or more"},
                    Refusal{R"({"wmi": {"A": [{"B": {"type": "VT_UI8", "value": 18446744073709551616}}]}})",
                            "/wmi/A/0/B/value", "whole number of 0 or more"},
                    Refusal{R"({"wmi": {"A": [{"B": {"type": "VT_DATE", "value": 1}}]}})", "/wmi/A/0/B/type",
                            "none of"},
                    Refusal{R"({"wmi": {"A": [{"B": {"type": "VT_BSTR", "value": 1}}]}})", "/wmi/A/0/B/value",
                            "must be text"},
                    Refusal{R"({"wmi": {"A": [{"B": ["x", 1]}]}})", "/wmi/A/0/B/1", "must be text"},
                    Refusal{R"({"wmi": {"A": {"rows": []}}})", "/wmi/A/rows", "not a known key"}));

TEST(Description, Unchecked_AllowsWhatDoesNotFit) {
    const machine::Description description = Parse(R"({
        "disks": [{"index": 0, "size": "10 MiB", "style": "mbr", "unchecked": true, "partitions": [
            {"offset": "1 MiB", "size": "30 MiB", "type": "ntfs"}, {"offset": "2 MiB", "size": "3 MiB", "type": "ntfs"}]}],
        "volumes": [{"unchecked": true, "extents": [{"disk": 9, "offset": 0, "length": 1}]}]})");
    EXPECT_EQ(description.disks[0].partitions[0].length, 30u << 20);
    EXPECT_EQ(description.volumes[0].extents->front().disk, 9u);
}

TEST(Description, Numbers_MayBeHexadecimalOrHaveUnits) {
    const machine::Description description = Parse(R"({"disks": [
        {"index": "0x0A", "size": "0x10000"}, {"index": 1, "size": "3 KiB"}, {"index": 2, "size": "2 TB"}]})");
    EXPECT_EQ(description.disks[0].index, 10u);
    EXPECT_EQ(description.disks[0].size, 65536u);
    EXPECT_EQ(description.disks[1].size, 3072u);
    EXPECT_EQ(description.disks[2].size, 2000000000000u);
}

TEST(Description, DerivedIdentifiers_DifferAndStay) {
    const std::string json = R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr"},
                                           {"index": 1, "size": "1 GiB", "style": "mbr"}],
                                 "volumes": [{"extents": []}, {"extents": []}]})";
    const machine::Description first = Parse(json);
    const machine::Description second = Parse(json);
    EXPECT_NE(first.disks[0].signature, 0u);
    EXPECT_NE(first.disks[0].signature, first.disks[1].signature);
    EXPECT_EQ(first.disks[0].signature, second.disks[0].signature);
    EXPECT_NE(first.volumes[0].guid, first.volumes[1].guid);
    EXPECT_EQ(first.volumes[0].guid, second.volumes[0].guid);
    EXPECT_NE(first.volumes[0].serial, first.volumes[1].serial);
}

TEST(Description, Devices_AreNumberedRoundTheGivenOnes) {
    const machine::Description description = Parse(R"({"volumes": [
        {"extents": [], "device": "\\Device\\HarddiskVolume2"}, {"extents": []}, {"extents": []},
        {"driveType": "cdrom"}, {"driveType": "cdrom"}]})");
    EXPECT_EQ(description.volumes[1].device, L"\\Device\\HarddiskVolume1");
    EXPECT_EQ(description.volumes[2].device, L"\\Device\\HarddiskVolume3");
    EXPECT_EQ(description.volumes[3].device, L"\\Device\\CdRom0");
    EXPECT_EQ(description.volumes[4].device, L"\\Device\\CdRom1");
}

TEST(Description, GivenFile_IsReadAndNamedInErrors) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / L"machine-\u00e4.json";
    std::ofstream(file) << R"({"disks": 1})";
    try {
        machine::LoadDescription(file);
        FAIL() << "must be refused";
    } catch (const machine::DescriptionError& error) {
        EXPECT_EQ(error.file(), machine::Narrow(file.wstring()));
        EXPECT_EQ(error.path(), "/disks");
    }
    std::filesystem::remove(file);
    EXPECT_THROW(machine::LoadDescription(file), machine::DescriptionError);
}

TEST(Description, GivenFolder_IsReadFromItsDescription) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "described-machine";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "machine.json") << R"({"name": "In a folder"})";
    EXPECT_EQ(machine::LoadDescription(folder).name, "In a folder");
    std::filesystem::remove(folder / "machine.json");
    try {
        machine::LoadDescription(folder);
        FAIL() << "must be refused";
    } catch (const machine::DescriptionError& error) {
        EXPECT_EQ(error.file(), machine::Narrow((folder / "machine.json").wstring()));
        EXPECT_EQ(error.reason(), "cannot be opened");
    }
    std::filesystem::remove(folder);
}

TEST(Description, Geometry_IsTakenWhenGiven) {
    const machine::Description description = Parse(R"({"disks": [{"index": 0, "size": "1 GiB",
        "geometry": {"cylinders": 9, "tracksPerCylinder": 16, "sectorsPerTrack": 17}, "mediaType": "removable"}]})");
    EXPECT_EQ(description.disks[0].cylinders, 9u);
    EXPECT_EQ(description.disks[0].tracks_per_cylinder, 16u);
    EXPECT_EQ(description.disks[0].sectors_per_track, 17u);
    EXPECT_EQ(description.disks[0].media_type, 11u);
}

struct GuidCase {
    const char* text;
    bool valid;
};

class GuidTextOf : public testing::TestWithParam<GuidCase> {};

TEST_P(GuidTextOf, Text_IsReadOrRefused) {
    const auto guid = machine::ParseGuid(GetParam().text);
    ASSERT_EQ(guid.has_value(), GetParam().valid);
    if (guid) {
        EXPECT_EQ(guid->Data1, 0x01234567u);
        EXPECT_EQ(guid->Data3, 0xCDEFu);
        EXPECT_EQ(guid->Data4[7], 0x0B);
        EXPECT_EQ(machine::GuidText(*guid), "{01234567-89ab-cdef-0123-45678900000b}");
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, GuidTextOf,
                         testing::Values(GuidCase{"{01234567-89AB-CDEF-0123-45678900000B}", true},
                                         GuidCase{"01234567-89ab-cdef-0123-45678900000b", true},
                                         GuidCase{"{01234567-89ab-cdef-0123-45678900000b", false},
                                         GuidCase{"0123456789ab-cdef-0123-45678900000b", false},
                                         GuidCase{"{01234567-89ab-cdef-0123-45678900000g}", false},
                                         GuidCase{"", false}));

}  // namespace
}  // namespace machine_test
