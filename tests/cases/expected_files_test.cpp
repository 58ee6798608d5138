#include "cases/expected_files.h"

#include "cases/case_folder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// A case in a folder of its own: a machine with one disk and one volume.
class ExpectedFiles : public testing::Test {
protected:
    ExpectedFiles() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        Put("machine.json", R"({
            "disks": [{"index": 0, "size": "1 GiB", "style": "mbr", "signature": 7,
                       "partitions": [{"offset": "1 MiB", "size": "100 MiB", "type": "ntfs", "active": true}]}],
            "volumes": [{"guid": "{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a01}", "partition": {"disk": 0, "number": 1},
                         "mountPoints": ["C:\\"]}]})");
        Put("README.md", "A small machine.\n");
    }
    ~ExpectedFiles() override { std::filesystem::remove_all(folder_); }

    void Put(const char* file, const std::string& text) const {
        std::ofstream(folder_ / file, std::ios::binary) << text;
    }
    std::string Text(const char* file) const { return cases::ReadText(folder_ / file); }
    bool Exists(const char* file) const { return std::filesystem::exists(folder_ / file); }

    const std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "orvane-case";
};

TEST_F(ExpectedFiles, Written_AreEqualToTheNextOutput) {
    cases::WriteExpectedFiles(folder_);
    for (const char* subject :
         {"format1", "format2", "format3", "wmi", "disks", "volumes", "firmware", "check"}) {
        EXPECT_EQ(cases::DifferenceOf(folder_, subject), "") << subject;
    }
    EXPECT_THAT(cases::WriteExpectedFiles(folder_), IsEmpty());
    EXPECT_THAT(cases::Strays(folder_), IsEmpty());
}

TEST_F(ExpectedFiles, CaseWithoutAReadme_IsRefused) {
    for (const char* text : {"none", ""}) {
        std::filesystem::remove(folder_ / "README.md");
        if (std::string(text).empty()) {
            Put("README.md", text);
        }
        EXPECT_THROW(cases::WriteExpectedFiles(folder_), std::runtime_error);
        EXPECT_FALSE(Exists("expected"));
    }
}

TEST_F(ExpectedFiles, FolderWithoutAMachine_IsRefused) {
    std::filesystem::remove(folder_ / "machine.json");
    EXPECT_THROW(cases::WriteExpectedFiles(folder_), std::runtime_error);
}

TEST_F(ExpectedFiles, MissingFile_Differs) {
    std::filesystem::create_directories(folder_ / "expected");
    EXPECT_THAT(cases::DifferenceOf(folder_, "firmware"),
                AllOf(StartsWith("firmware.txt is missing"), HasSubstr("+ 1 Firmware type: ")));
}

TEST_F(ExpectedFiles, ChangedLine_IsShownWithItsNumber) {
    cases::WriteExpectedFiles(folder_);
    std::string text = Text("expected/disks.txt");
    const std::string line = "1 Number of Disks: 1\n";
    ASSERT_NE(text.find(line), std::string::npos) << text;
    text.replace(text.find(line), line.size(), "1 Number of Disks: 2\n");
    Put("expected/disks.txt", text);
    EXPECT_THAT(cases::DifferenceOf(folder_, "disks"),
                AllOf(StartsWith("disks.txt, line 3:\n"), HasSubstr("\n- 1 Number of Disks: 2\n+ " + line)));
}

TEST_F(ExpectedFiles, SelectedVolume_IsRefusedWithItsReason) {
    cases::WriteExpectedFiles(folder_);
    Put("selected.txt", "X:\r\n\r\n");
    EXPECT_THAT(cases::DifferenceOf(folder_, "format3"),
                StartsWith("There is no format3.xml. The library makes format3.refused.txt"));
    EXPECT_THAT(cases::WriteExpectedFiles(folder_),
                ElementsAre("written format2.refused.txt", "removed format2.xml",
                            "written format3.refused.txt", "removed format3.xml", "written check.json"));
    EXPECT_EQ(Text("expected/format3.refused.txt"),
              "3 Backup cannot proceed. Failed to find any information about volume X:.\n"
              "3 CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information\n");
    EXPECT_THAT(Text("expected/check.json"), HasSubstr("\"volume\": \"X:\""));
}

TEST_F(ExpectedFiles, UnknownFiles_AreStrays) {
    cases::WriteExpectedFiles(folder_);
    Put("notes.txt", "");
    Put("expected/format4.xml", "");
    EXPECT_THAT(cases::Strays(folder_), ElementsAre("expected/format4.xml", "notes.txt"));
}

}  // namespace
