#include "tools/orvane/program.h"

#include "common/windows.h"
#include "tools/orvane/orvane_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ProgramTest : public testing::Test {
protected:
    int Run(const std::vector<std::wstring>& arguments) {
        return host::Run(arguments, {in_, out_, errors_, false, std::nullopt});
    }

    std::istringstream in_;
    std::ostringstream out_;
    std::ostringstream errors_;
};

TEST_F(ProgramTest, Help_GoesToStandardOutput) {
    EXPECT_EQ(Run({L"--help"}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("capture"));
    EXPECT_THAT(errors_.str(), IsEmpty());
}

TEST_F(ProgramTest, BadUsage_GoesToStandardError) {
    EXPECT_EQ(Run({L"capture", L"--frobnicate"}), 2);
    EXPECT_THAT(out_.str(), IsEmpty());
    EXPECT_THAT(errors_.str(), StartsWith("orvane: "));
}

TEST_F(ProgramTest, MissingDescription_IsNamedByEveryCommand) {
    for (const std::vector<std::wstring>& command :
         {std::vector<std::wstring>{L"capture"}, {L"dump", L"disks"}, {L"check"}, {L"check", L"--json"}}) {
        std::vector<std::wstring> arguments = command;
        arguments.insert(arguments.end(), {L"--machine", L"no-such-machine.json"});
        errors_.str("");
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_THAT(errors_.str(), AllOf(StartsWith("orvane: "), HasSubstr("no-such-machine.json")));
        EXPECT_THAT(out_.str(), IsEmpty());
    }
}

TEST_F(ProgramTest, BadDescription_IsRefusedWithFilePathAndReason) {
    const auto file = std::filesystem::temp_directory_path() / "orvane-program-test.json";
    std::ofstream(file) << R"({"disks": [{"index": 0, "size": "large"}]})";
    EXPECT_EQ(Run({L"capture", L"--machine", file.wstring()}), 2);
    EXPECT_THAT(errors_.str(),
                AllOf(HasSubstr("orvane-program-test.json: /disks/0/size: "), HasSubstr("\n")));
    EXPECT_THAT(out_.str(), IsEmpty());
    std::filesystem::remove(file);
}

TEST_F(ProgramTest, ControlCharactersInADescription_AreEscaped) {
    const auto file = std::filesystem::temp_directory_path() / "orvane-program-test-controls.json";
    std::ofstream(file) << R"({"disks": [], "\u001B[2J\u202Esize": 1})";
    EXPECT_EQ(Run({L"capture", L"--machine", file.wstring()}), 2);
    EXPECT_THAT(errors_.str(), HasSubstr("\\u001B[2J\\u202Esize"));
    std::filesystem::remove(file);
}

TEST(LibraryPath, Library_IsLookedForBesideTheProgram) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    EXPECT_EQ(host::LibraryPath(), std::filesystem::path(program).parent_path() / "Orvane.dll");
}

TEST(OrvaneLibrary, MissingFile_IsToldWithTheSystemsError) {
    try {
        const host::OrvaneLibrary library(L"C:\\no-such-folder\\Orvane.dll");
        FAIL() << "a missing library was loaded";
    } catch (const host::LibraryError& error) {
        EXPECT_THAT(error.what(), AllOf(HasSubstr("no-such-folder"), HasSubstr("error")));
    }
}

TEST(OrvaneLibrary, LibraryWithoutTheExports_IsRefused) {
    try {
        const host::OrvaneLibrary library(L"kernel32.dll");
        FAIL() << "another library was taken";
    } catch (const host::LibraryError& error) {
        EXPECT_THAT(error.what(), HasSubstr("exports no GetOrvaneVersion"));
    }
}

}  // namespace
