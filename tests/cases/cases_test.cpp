// Every case of examples/machines: what the shipped library makes of the described machine is in expected/.

#include "cases/case_folder.h"
#include "cases/case_outputs.h"
#include "cases/expected_files.h"
#include "cases/readme_quotes.h"

#include <gmock/gmock.h>

#include <clocale>

namespace {

const std::filesystem::path kExamples = ORVANE_SOURCE_DIR "/examples/machines";

std::string TestName(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
    return name;
}

TEST(CaseFolders, Examples_HaveSome) {
    EXPECT_FALSE(cases::FoldersOf(kExamples).empty());
}

class CaseFolder : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(CaseFolder, Readme_ShowsWhatIsSpecialByExpectedLines) {
    EXPECT_THAT(cases::UnmetQuotes(GetParam()), testing::IsEmpty());
}

TEST_P(CaseFolder, TableOfAllCases_NamesIt) {
    const std::string name = GetParam().filename().string();
    EXPECT_THAT(cases::ReadText(kExamples / cases::kReadmeFile),
                testing::HasSubstr("| [" + name + "](" + name + "/README.md) |"));
}

TEST_P(CaseFolder, NothingElse_LiesInIt) {
    EXPECT_THAT(cases::Strays(GetParam()), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Machines, CaseFolder, testing::ValuesIn(cases::FoldersOf(kExamples)),
                         [](const auto& folder) { return TestName(folder.param.filename().string()); });

class Case : public testing::TestWithParam<std::tuple<std::filesystem::path, std::string>> {
protected:
    // As in orvane.exe: the library's log uses the locale of the C runtime.
    Case() { std::setlocale(LC_CTYPE, ""); }
    ~Case() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_P(Case, Output_IsTheExpectedFile) {
    const auto& [folder, subject] = GetParam();
    const std::string difference = cases::DifferenceOf(folder, subject);
    EXPECT_TRUE(difference.empty()) << difference;
}

INSTANTIATE_TEST_SUITE_P(Machines, Case,
                         testing::Combine(testing::ValuesIn(cases::FoldersOf(kExamples)),
                                          testing::ValuesIn(cases::Subjects())),
                         [](const auto& row) {
                             return TestName(std::get<0>(row.param).filename().string() + "_" +
                                             std::get<1>(row.param));
                         });

}  // namespace
