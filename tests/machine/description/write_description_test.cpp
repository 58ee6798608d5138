#include "machine/test_machine.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>

namespace machine_test {
namespace {

class WrittenExample : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(WrittenExample, Description_IsTheSameWhenReadAgain) {
    const machine::Description description = machine::LoadDescription(GetParam());
    const std::string text = machine::WriteDescription(description, GetParam());
    EXPECT_TRUE(machine::ParseDescription(text, "written.json", GetParam()) == description) << text;
}

std::vector<std::filesystem::path> Folders() {
    std::vector<std::filesystem::path> folders;
    for (const auto& entry : std::filesystem::directory_iterator(ORVANE_SOURCE_DIR "/examples/machines")) {
        if (entry.is_directory()) {
            folders.push_back(entry.path());
        }
    }
    return folders;
}

INSTANTIATE_TEST_SUITE_P(Machines, WrittenExample, testing::ValuesIn(Folders()),
                         [](const testing::TestParamInfo<std::filesystem::path>& example) {
                             std::string name = example.param.filename().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

struct Written {
    const char* name;
    const char* json;
};

std::ostream& operator<<(std::ostream& stream, const Written& written) {
    return stream << written.name;
}

// Descriptions in the form in which they are written: without defaults, in the order of the rows, with
// numbers as such.
class WrittenForm : public testing::TestWithParam<Written> {};

TEST_P(WrittenForm, Description_IsWrittenAsItWas) {
    const std::string text = machine::WriteDescription(Parse(GetParam().json));
    EXPECT_EQ(nlohmann::json::parse(text), nlohmann::json::parse(GetParam().json)) << text;
    EXPECT_TRUE(Parse(text) == Parse(GetParam().json));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, WrittenForm,
    testing::Values(
        Written{"nothing", "{}"},
        Written{
            "machine",
            R"({"name": "A", "currentDrive": "D:\\", "missing": ["GetFirmwareType"], "xmlComponent": false,
            "dosDevices": {"COM1": "\\Device\\Serial0", "X:": {"target": "\\Device\\X",
                "errors": {"QueryDosDeviceW": 5}}}, "enumeratorRefusal": 5, "errors": {"CreateFileW": 5}})"},
        Written{"mbr",
                R"({"disks": [{"index": 3, "size": 1073741824, "style": "mbr", "signature": 7, "checksum": 8,
            "recognition": "used", "mediaType": "removable", "partitions": [
            {"offset": 1048576, "size": 1048576, "type": "ntfs", "active": true, "hiddenSectors": 63},
            {"offset": 4194304, "size": 104857600, "type": "extended-lba", "slot": 4, "logical": [
                {"offset": 5242880, "size": 1048576, "type": "fat16"},
                {"offset": 8388608, "size": 1048576, "type": 131, "record": 7340032, "number": 9,
                 "recognized": false}]}]}]})"},
        Written{"gpt", R"({"disks": [{"index": 0, "size": 1073741824, "bytesPerSector": 4096, "style": "gpt",
            "diskId": "{01234567-89ab-cdef-0123-456789abcdef}", "maxPartitionCount": 64, "startingUsableOffset": 65536,
            "partitions": [{"offset": 1048576, "size": 1048576, "type": "basic-data", "name": "Data", "number": 4},
            {"offset": 2097152, "size": 1048576, "type": "{11111111-89ab-cdef-0123-456789abcdef}", "attributes": 1,
             "id": "{22222222-89ab-cdef-0123-456789abcdef}"}]}]})"},
        Written{"disks",
                R"({"disks": [{"index": 0, "size": 1048576, "blank": true, "wmi": false, "offline": true},
            {"index": 1, "size": 1048576, "superFloppy": {"number": 1}, "openForWritingError": 5, "wmi": {"Model": "M"}},
            {"index": 2, "size": 1048576, "geometry": {"cylinders": 5, "tracksPerCylinder": 2},
             "detection": {"type": "int13", "maxHeads": 4}, "errors": {"CreateFileW": 5}},
            {"index": 4, "size": 1048576, "style": "mbr", "unchecked": true,
             "partitions": [{"offset": 0, "size": 2097152, "type": "ntfs"}]}]})"},
        Written{"volumes", R"({"disks": [{"index": 0, "size": 1073741824, "style": "mbr", "signature": 1,
                "partitions": [{"offset": 1048576, "size": 10485760, "type": "ntfs"}]}],
            "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\", "C:\\Data\\"],
                "aliases": ["{01234567-89ab-cdef-0123-456789abcdef}",
                    {"guid": "{11234567-89ab-cdef-0123-456789abcdef}", "enumerated": false}],
                "label": {"utf16": "0041 D800"}, "free": 8192, "extentsShortError": 122, "extentsShortAnswer": "none"},
            {"extents": [{"disk": 0, "offset": 20971520, "length": 4096}], "guid": null, "linked": false,
                "device": "\\Device\\Other", "fileSystem": "", "partitionNumber": 6},
            {"driveType": "cdrom", "media": false, "openForWritingError": 5, "errors": {"GetDriveTypeW": 5}},
            {"unchecked": true, "fileSystem": "FAT32", "length": 1048576, "free": 1024,
                "freeBytes": 7, "freeBytesToCaller": 6, "totalBytes": 9, "serial": 1, "flags": 2}]})"},
        Written{
            "logical_outside",
            R"({"disks": [{"index": 0, "size": 10737418240, "style": "mbr", "signature": 7, "partitions": [
            {"offset": 1073741824, "size": 0, "type": "extended", "logical": [
                {"offset": 2147483648, "size": 1048576, "type": "ntfs"},
                {"offset": 4294967296, "size": 1048576, "type": "ntfs"}]},
            {"offset": 8589934592, "size": 1048576, "type": "extended"}]}]})"},
        Written{"system", R"({"firmware": {"type": "bios", "variableLength": 3, "variableError": 4},
            "directories": {"\\Device": {"otherNames": 5}, "\\X": {"entries": ["A", {"name": "B", "type": "Key"}]}},
            "registry": {"A\\B": {"": "text", "list": ["a", "b"], "number": 7,
                "odd": {"type": "REG_SZ", "bytes": "41"}, "open": {"type": "REG_SZ", "bytes": "41 00"},
                "openList": {"type": "REG_MULTI_SZ", "bytes": "41 00 00 00"}, "none": {"type": "REG_MULTI_SZ", "bytes": ""},
                "raw": {"type": "REG_BINARY", "bytes": "00 ff"}}}})"},
        Written{"wmi", R"({"disks": [{"index": 0, "size": 1048576}, {"index": 1, "size": 1048576}],
            "wmi": {"WIN32_BOOTCONFIGURATION": null, "WIN32_PROCESSOR": [{"Name": "P", "NumberOfCores": 2}],
            "WIN32_DISKDRIVE": [{"Index": 0, "Model": "M"}, {"Index": 1}],
            "WIN32_COMPUTERSYSTEM": {"breaks": {"after": 1, "error": 5}, "errors": {"IWbemServices::ExecQuery": 5}},
            "OWN": [{"A": null, "B": true, "C": -1, "D": 1.5, "E": ["x"], "F": {"type": "VT_UI8", "value": 5},
                "G": {"type": "VT_EMPTY"}, "H": {"error": 5},
                "I": {"type": "VT_UI8", "value": 18446744073709551615}}]}})"}),
    [](const testing::TestParamInfo<Written>& form) { return std::string(form.param.name); });

}  // namespace
}  // namespace machine_test
