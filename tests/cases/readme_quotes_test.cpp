#include "cases/readme_quotes.h"

#include <gmock/gmock.h>

#include <fstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReadmeQuotes : public testing::Test {
protected:
    ReadmeQuotes() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_ / "expected");
        Put("expected/disks.txt", "1 One\n1   Two\n1 Three\n");
    }
    ~ReadmeQuotes() override { std::filesystem::remove_all(folder_); }

    void Put(const char* file, const std::string& text) const {
        std::ofstream(folder_ / file, std::ios::binary) << text;
    }
    std::vector<std::string> Unmet(const std::string& readme) const {
        Put("README.md", readme);
        return cases::UnmetQuotes(folder_);
    }

    const std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "orvane-readme";
};

TEST_F(ReadmeQuotes, LinesOfTheFile_AreMet) {
    EXPECT_THAT(Unmet("# A\n\n```expected/disks.txt\n1 One\n1 Three\n```\n"), IsEmpty());
    EXPECT_THAT(Unmet("```expected/disks.txt\r\n  1   Two\r\n```\r\n"), IsEmpty());
}

TEST_F(ReadmeQuotes, OtherLines_AreNamed) {
    EXPECT_THAT(Unmet("```expected/disks.txt\n1 Four\n```\n"), ElementsAre("disks.txt: 1 Four"));
    EXPECT_THAT(Unmet("```expected/disks.txt\n1 On\n```\n"), ElementsAre("disks.txt: 1 On"));
    EXPECT_THAT(Unmet("```expected/wmi.txt\n1 One\n```\n"), ElementsAre("wmi.txt: 1 One"));
}

TEST_F(ReadmeQuotes, LinesInAnotherOrder_AreNamed) {
    EXPECT_THAT(
        Unmet("```expected/disks.txt\n1 Three\n1 One\n```\n```expected/disks.txt\n1 One\n1 One\n```\n"),
        ElementsAre("disks.txt: 1 One", "disks.txt: 1 One"));
}

TEST_F(ReadmeQuotes, NoQuoteAtAll_IsSaid) {
    EXPECT_THAT(Unmet("# A\n\n```\n1 One\n```\n"),
                ElementsAre("README.md quotes no line of the expected files"));
}

}  // namespace
