#include "documents/case_documents.h"
#include "documents/commands/command_line.h"
#include "documents/commands/output_file.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const std::string kMachines = ORVANE_SOURCE_DIR "/examples/machines/";
const std::string kGood = kMachines + "bios-laptop/expected/format2.xml";
const std::string kWithErrors = kMachines + "uefi-workstation/expected/format3.xml";

std::string ContentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A folder of its own for each test.
class DocumentCommands : public testing::Test {
protected:
    DocumentCommands()
        : folder_(std::filesystem::path(ORVANE_BINARY_DIR) / "documents-scratch" /
                  testing::UnitTest::GetInstance()->current_test_info()->name()) {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    ~DocumentCommands() override { std::filesystem::remove_all(folder_); }

    std::string File(const std::string& name, const std::string& text) const {
        const std::filesystem::path path = folder_ / name;
        std::ofstream(path, std::ios::binary) << text;
        return path.generic_string();
    }

    int Run(std::vector<std::string> arguments, const std::string& input = "") {
        CLI::App program("", "orvane");
        const documents::CommandLine commands(program);
        std::reverse(arguments.begin(), arguments.end());
        program.parse(arguments);
        std::istringstream in(input);
        out_.str("");
        errors_.str("");
        return documents::RunCommand(*commands.Given(), {in, out_, errors_, false, std::nullopt});
    }

    std::vector<std::string> ErrorLines() const {
        std::vector<std::string> lines;
        std::istringstream in(errors_.str());
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    std::filesystem::path folder_;
    std::ostringstream out_;
    std::ostringstream errors_;
};

TEST_F(DocumentCommands, HighestCode_CountsAndAllAreProcessed) {
    const std::string bad = File("bad.xml", "<root>");
    EXPECT_EQ(Run({"verify", kGood}), 0);
    EXPECT_EQ(Run({"verify", kWithErrors, kGood}), 1);
    EXPECT_EQ(Run({"verify", bad, kWithErrors, kGood}), 2);
    EXPECT_THAT(ErrorLines(),
                testing::ElementsAre("orvane: " + bad +
                                     ": line 1, column 7: the text ends inside of the element root"));
    EXPECT_THAT(out_.str(), HasSubstr(kGood + ": 0 errors, 0 notes\n"));
    EXPECT_EQ(Run({"show", bad, kGood}), 2);
    EXPECT_THAT(out_.str(), HasSubstr("LT-ANNA"));
    EXPECT_EQ(Run({"show", kWithErrors}), 0);
}

TEST_F(DocumentCommands, Dash_IsStandardInput) {
    EXPECT_EQ(Run({"show", "-"}, case_documents::TextOf("bios-laptop", 2)), 0);
    EXPECT_THAT(out_.str(), HasSubstr("LT-ANNA"));
    EXPECT_EQ(Run({"show", "-"}, "x"), 2);
    EXPECT_THAT(errors_.str(), StartsWith("orvane: standard input: line 1, column 1: "));
}

TEST_F(DocumentCommands, From_ListsDocuments) {
    const std::string list = File("list.txt", "\xEF\xBB\xBF" + kGood + "\r\n\n" + kWithErrors + "\n");
    EXPECT_EQ(Run({"show", "--json", "--from", list, kGood}), 0);
    const nlohmann::json json = nlohmann::json::parse(out_.str());
    std::vector<std::string> files;
    for (const auto& document : json["documents"]) {
        files.push_back(document["file"]);
    }
    EXPECT_THAT(files, testing::ElementsAre(kGood, kGood, kWithErrors));
    EXPECT_EQ(Run({"show", "--from", (folder_ / "none").generic_string()}), 2);
    EXPECT_EQ(Run({"show"}), 2);
    EXPECT_THAT(ErrorLines(), SizeIs(1));
}

TEST_F(DocumentCommands, From_NamesTheListThatCannotBeRead) {
    const std::string list = File("list.txt", std::string("\xFF\xFE\x0A", 3));
    EXPECT_EQ(Run({"show", "--from", list}), 2);
    EXPECT_THAT(ErrorLines(), testing::ElementsAre("orvane: " + list +
                                                   ": line 1, column 1: half of a character of UTF-16 ends "
                                                   "the file"));
}

TEST_F(DocumentCommands, Verdicts_AreReadAsPowerShellWritesThem) {
    const std::string page = (folder_ / "page.html").generic_string();
    std::string utf16 = "\xFF\xFE";
    for (const char c : ContentOf(kMachines + "bios-laptop/expected/check.json")) {
        utf16 += c;
        utf16 += '\0';
    }
    EXPECT_EQ(Run({"report", kGood, "--output", page, "--verdicts", File("check.json", utf16)}), 0)
        << errors_.str();
    EXPECT_THAT(ContentOf(page), HasSubstr("This not a fixed disk, type is 5"));
}

TEST_F(DocumentCommands, Lines_HaveOneObjectForEachDocument) {
    const std::string bad = File("bad.xml", "<root>");
    EXPECT_EQ(Run({"show", "--json", "--lines", kWithErrors, bad}), 2);
    std::istringstream lines(out_.str());
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_THAT(line, StartsWith("{\"schema\":1,\"file\":"));
    EXPECT_FALSE(nlohmann::json::parse(line)["findings"].empty());
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ(nlohmann::json::parse(line)["error"]["place"], "line 1, column 7");
    EXPECT_FALSE(std::getline(lines, line));
}

TEST_F(DocumentCommands, CodePage_IsThatOfTheDocument) {
    std::string text =
        case_documents::Replaced(case_documents::TextOf("bios-laptop", 2), "Documents", "D\xFC");
    const std::string file = File("ansi.xml", text);
    EXPECT_EQ(Run({"show", file}), 2);
    EXPECT_EQ(Run({"show", "--code-page", "1252", file}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("\"D\xC3\xBC\""));
    EXPECT_EQ(Run({"show", "--code-page", "1251", file}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("\"D\xD1\x8C\""));
    EXPECT_THROW(Run({"show", "--code-page", "12", file}), CLI::ParseError);
}

TEST_F(DocumentCommands, FolderOrMissingFile_IsTrouble) {
    EXPECT_EQ(Run({"show", folder_.generic_string()}), 2);
    EXPECT_THAT(ErrorLines(), testing::ElementsAre("orvane: " + folder_.generic_string() + ": is a folder"));
    EXPECT_EQ(Run({"show", "no-such-file"}), 2);
    EXPECT_THAT(ErrorLines(), testing::ElementsAre("orvane: no-such-file: the file cannot be opened"));
}

TEST_F(DocumentCommands, OutputThatCannotBeWritten_IsTrouble) {
    CLI::App program("", "orvane");
    const documents::CommandLine commands(program);
    program.parse(std::vector<std::string>{kGood, "show"});
    std::istringstream in;
    out_.setstate(std::ios::badbit);
    EXPECT_EQ(documents::RunCommand(*commands.Given(), {in, out_, errors_, false, std::nullopt}), 2);
    EXPECT_EQ(errors_.str(), "orvane: the output cannot be written\n");
}

TEST_F(DocumentCommands, NamesOfFiles_AreEscaped) {
    EXPECT_EQ(Run({"show", "no\x1b[2J"}), 2);
    EXPECT_THAT(errors_.str(), HasSubstr("no\\u001B[2J"));
}

TEST_F(DocumentCommands, WholeFile_IsWrittenOverAnotherByForceOnly) {
    const std::filesystem::path file = folder_ / "out.txt";
    documents::WriteWholeFile(file.generic_string(), "one", false);
    EXPECT_EQ(ContentOf(file), "one");
    EXPECT_THROW(documents::WriteWholeFile(file.generic_string(), "two", false), documents::Trouble);
    EXPECT_EQ(ContentOf(file), "one");
    documents::WriteWholeFile(file.generic_string(), "two", true);
    EXPECT_EQ(ContentOf(file), "two");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
}

TEST_F(DocumentCommands, WholeFile_LeavesNothingWhenItFails) {
    std::filesystem::create_directory(folder_ / "taken");
    EXPECT_THROW(documents::WriteWholeFile((folder_ / "taken").generic_string(), "one", true),
                 documents::Trouble);
    EXPECT_THROW(documents::WriteWholeFile((folder_ / "none/out").generic_string(), "one", true),
                 documents::Trouble);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
}

}  // namespace
