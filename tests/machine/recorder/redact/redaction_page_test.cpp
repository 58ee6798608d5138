// docs/redaction.md against the tables of the code.

#include "machine/description/text.h"
#include "machine/recorder/observe/question_table.h"
#include "machine/recorder/redact/redaction_table.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace {

using recorder::Content;
using testing::IsSupersetOf;

std::vector<std::string> LinesOfPage() {
    std::ifstream page(ORVANE_SOURCE_DIR "/docs/redaction.md");
    std::vector<std::string> lines;
    for (std::string line; std::getline(page, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> LinesOfPage(const std::string& beginning) {
    std::vector<std::string> lines;
    for (const std::string& line : LinesOfPage()) {
        if (line.starts_with(beginning)) {
            lines.push_back(line);
        }
    }
    return lines;
}

const char* WordFor(Content content) {
    switch (content) {
        case Content::kStays:
            return "free text";
        case Content::kWord:
            return "word";
        case Content::kText:
            return "private";
        case Content::kName:
            return "name";
        case Content::kPath:
            return "path";
        case Content::kTextAndPaths:
            return "text and paths";
        case Content::kInstance:
            return "instance";
        case Content::kPartition:
            return "partition name";
        case Content::kId:
            return "id";
        case Content::kOptions:
            return "options";
    }
    return "";
}

// "| Win32_Processor | word | AddressWidth, Architecture |", one line for each content.
std::vector<std::string> LinesOf(const std::string& name, std::span<const recorder::ValueRow> rows) {
    std::map<Content, std::string> values;
    for (const recorder::ValueRow& row : rows) {
        std::string& list = values[row.content];
        list += (list.empty() ? "" : ", ") + machine::Narrow(row.name);
    }
    std::vector<std::string> lines;
    for (const auto& [content, list] : values) {
        lines.push_back("| " + name + " | " + WordFor(content) + " | " + list + " |");
    }
    return lines;
}

TEST(RedactionPage, Properties_AreThoseOfTheCode) {
    std::vector<std::string> expected;
    for (const recorder::WmiRow& row : recorder::WmiTable()) {
        const auto lines = LinesOf(machine::Narrow(row.name), row.values);
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    EXPECT_THAT(LinesOfPage("| Win32_"), testing::ElementsAreArray(expected));
}

TEST(RedactionPage, MembersAndRegistryValues_AreThoseOfTheCode) {
    EXPECT_THAT(LinesOfPage("| GetVolumeInformationW |"),
                testing::ElementsAreArray(LinesOf("GetVolumeInformationW", recorder::VolumeTable())));
    EXPECT_THAT(LinesOfPage("| registry |"),
                testing::ElementsAreArray(LinesOf("registry", recorder::RegistryTable())));
}

TEST(RedactionPage, EveryContent_IsExplained) {
    for (int content = 0; content <= static_cast<int>(Content::kOptions); ++content) {
        const std::string word = WordFor(static_cast<Content>(content));
        EXPECT_EQ(LinesOfPage("| " + word + " |").size(), 1U) << word;
    }
}

TEST(RedactionTable, EveryQuestion_HasARow) {
    for (const recorder::QuestionRow& question : recorder::QuestionTable()) {
        EXPECT_NE(recorder::FindCall(question.call), nullptr) << question.call;
    }
}

TEST(RedactionTable, UnknownProperty_IsPrivate) {
    EXPECT_EQ(recorder::ContentOfProperty(L"Win32_ComputerSystem", L"SomethingNew"), Content::kText);
    EXPECT_EQ(recorder::ContentOfProperty(L"Win32_SomethingNew", L"Status"), Content::kText);
    EXPECT_EQ(recorder::ContentOfProperty(L"win32_computersystem", L"MODEL"), Content::kStays);
}

}  // namespace
