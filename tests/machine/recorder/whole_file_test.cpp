#include "tools/orvane/whole_file.h"

#include "common/windows.h"
#include "support/own_process.h"
#include "support/scoped_import.h"
#include "tools/orvane/private_file.h"

#include <aclapi.h>
#include <gmock/gmock.h>

#include <fstream>
#include <utility>

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

TEST_F(WholeFile, SecondPlaceThatCannotBeTaken_LeavesTheFirstFileAsItWas) {
    host::WriteWholeFiles({{file_, "old"}}, host::Existing::kKept);
    std::filesystem::create_directories(folder_ / "folder");
    EXPECT_THROW(
        host::WriteWholeFiles({{file_, "new"}, {folder_ / "folder", "new"}}, host::Existing::kReplaced),
        std::runtime_error);
    EXPECT_EQ(Text(), "old");
    EXPECT_EQ(FilesInFolder(), 2U);
}

bool first_move = true;

BOOL WINAPI FailLaterMove(LPCWSTR from, LPCWSTR to, DWORD /*flags*/) {
    if (std::exchange(first_move, false)) {
        return MoveFileW(from, to);
    }
    SetLastError(ERROR_SHARING_VIOLATION);
    return FALSE;
}

TEST_F(WholeFile, LaterFileThatCannotBeMoved_TakesTheFirstBack) {
    const support::ScopedImport<decltype(&MoveFileExW)> import("MoveFileExW", &FailLaterMove);
    first_move = true;
    EXPECT_THROW(
        host::WriteWholeFiles({{file_, "new"}, {folder_ / "second.json", "new"}}, host::Existing::kKept),
        std::runtime_error);
    EXPECT_EQ(FilesInFolder(), 0U);
}

TEST_F(WholeFile, LaterFileThatCannotBeReplaced_NamesTheFirst) {
    const support::ScopedImport<decltype(&MoveFileExW)> import("MoveFileExW", &FailLaterMove);
    first_move = true;
    const auto write = [&] {
        host::WriteWholeFiles({{file_, "new"}, {folder_ / "second.json", "new"}}, host::Existing::kReplaced);
    };
    EXPECT_THAT(write, testing::ThrowsMessage<std::runtime_error>(testing::AllOf(
                           testing::HasSubstr("second.json: cannot be written, error 32; "),
                           testing::EndsWith(file_.filename().string() + " is written already"))));
    EXPECT_EQ(FilesInFolder(), 1U);
}

// As on a file system without access lists, which gives everybody all access.
DWORD WINAPI NoAccessList(HANDLE /*object*/, SE_OBJECT_TYPE /*type*/, SECURITY_INFORMATION /*wanted*/,
                          PSID* /*owner*/, PSID* /*group*/, PACL* access, PACL* /*audit*/,
                          PSECURITY_DESCRIPTOR* descriptor) {
    *access = nullptr;
    *descriptor = nullptr;
    return ERROR_SUCCESS;
}

TEST_F(WholeFile, FileForItsOwner_IsRefusedWhereTheFileSystemHasNoAccessLists) {
    const support::ScopedImport<decltype(&GetSecurityInfo)> import("GetSecurityInfo", &NoAccessList);
    const auto write = [&] {
        host::WriteWholeFiles({{folder_ / "first.json", "text"}, {file_, "names", true}},
                              host::Existing::kKept);
    };
    EXPECT_THAT(write, testing::ThrowsMessage<std::runtime_error>(
                           testing::HasSubstr("the file system cannot keep others from reading it")));
    EXPECT_EQ(FilesInFolder(), 0U);
}

DWORD WINAPI UnknownAccessList(HANDLE /*object*/, SE_OBJECT_TYPE /*type*/, SECURITY_INFORMATION /*wanted*/,
                               PSID* /*owner*/, PSID* /*group*/, PACL* /*access*/, PACL* /*audit*/,
                               PSECURITY_DESCRIPTOR* /*descriptor*/) {
    return ERROR_NOT_SUPPORTED;
}

TEST_F(WholeFile, FileForItsOwner_IsRefusedWhereNobodyKnowsWhoMayReadIt) {
    const support::ScopedImport<decltype(&GetSecurityInfo)> import("GetSecurityInfo", &UnknownAccessList);
    EXPECT_THROW(host::WriteWholeFiles({{file_, "names", true}}, host::Existing::kKept), std::runtime_error);
    EXPECT_EQ(FilesInFolder(), 0U);
}

PHANDLER_ROUTINE interrupt = nullptr;

BOOL WINAPI KeepHandler(PHANDLER_ROUTINE handler, BOOL add) {
    interrupt = handler;
    return add;
}

TEST(UnfinishedFile, Interruption_DeletesIt) {
    if (!support::InOwnProcess()) {
        return;  // the handler is set once per process
    }
    const support::ScopedImport<decltype(&SetConsoleCtrlHandler)> import("SetConsoleCtrlHandler",
                                                                         &KeepHandler);
    const host::TemporaryPrivateFile temporary("names");
    ASSERT_TRUE(std::filesystem::exists(temporary.path()));
    ASSERT_NE(interrupt, nullptr);
    EXPECT_EQ(interrupt(CTRL_C_EVENT), FALSE) << "the process would go on";
    EXPECT_FALSE(std::filesystem::exists(temporary.path()));
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
