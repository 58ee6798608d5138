#include "tools/orvane/whole_file.h"

#include "tools/orvane/private_file.h"

#include <gmock/gmock.h>

#include <fstream>

namespace {

class WholeFile : public testing::Test {
protected:
    WholeFile() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    ~WholeFile() override { std::filesystem::remove_all(folder_); }

    std::string Text() const {
        std::ifstream stream(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::size_t FilesInFolder() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
    }

    std::filesystem::path folder_ = std::filesystem::path(ORVANE_BINARY_DIR) / "whole-file-test";
    std::filesystem::path file_ = folder_ / "file.json";
};

TEST_F(WholeFile, NewFile_HasTheTextAndNothingLiesBesideIt) {
    host::WriteWholeFiles({{file_, "text\n"}}, host::Existing::kKept);
    EXPECT_EQ(Text(), "text\n");
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(WholeFile, ExistingFile_IsKeptUnlessReplacementIsAsked) {
    host::WriteWholeFiles({{file_, "old"}}, host::Existing::kKept);
    EXPECT_THROW(host::WriteWholeFiles({{file_, "new"}}, host::Existing::kKept), std::runtime_error);
    EXPECT_EQ(Text(), "old");
    host::WriteWholeFiles({{file_, "new"}}, host::Existing::kReplaced);
    EXPECT_EQ(Text(), "new");
}

TEST_F(WholeFile, FolderThatDoesNotExist_IsAnError) {
    EXPECT_THROW(host::WriteWholeFiles({{folder_ / "none" / "file.json", "text"}}, host::Existing::kKept),
                 std::runtime_error);
}

TEST_F(WholeFile, PlaceThatCannotBeTaken_LeavesNothingHalf) {
    std::filesystem::create_directories(file_ / "in-the-way");
    EXPECT_THROW(host::WriteWholeFiles({{file_, "text"}}, host::Existing::kReplaced), std::runtime_error);
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(WholeFile, FileForItsOwner_ReplacesOneThatOthersMayRead) {
    host::WriteWholeFiles({{file_, "old"}}, host::Existing::kKept);
    EXPECT_FALSE(host::OnlyOwnerMayRead(file_));
    host::WriteWholeFiles({{file_, "new", true}}, host::Existing::kReplaced);
    EXPECT_TRUE(host::OnlyOwnerMayRead(file_));
    EXPECT_EQ(Text(), "new");
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(WholeFile, SecondFileThatCannotBeWritten_LeavesTheFirstOut) {
    EXPECT_THROW(host::WriteWholeFiles({{file_, "text"}, {folder_ / "none" / "file.json", "text"}},
                                       host::Existing::kKept),
                 std::runtime_error);
    EXPECT_EQ(FilesInFolder(), 0U);
}

}  // namespace
