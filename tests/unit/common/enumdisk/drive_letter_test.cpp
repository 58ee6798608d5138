#include "common/enumdisk/enum_disk.h"
#include "support/logger_capture.h"
#include "support/text.h"

#include <gmock/gmock.h>

namespace {

std::wstring LetterOf(std::initializer_list<std::wstring_view> paths) {
    const std::wstring list = support::MultiString(paths);
    return EnumDisk().GetDriveLetter(L"VOLUME", list.data(), list.size());
}

TEST(GetDriveLetter, RootAndFolder_IsTheRootWithALineForTheFolder) {
    const support::LoggerCapture log;
    EXPECT_EQ(LetterOf({L"C:\\Mount\\", L"C:\\"}), L"C:\\");
    EXPECT_THAT(log.all(),
                testing::Contains(support::Trace(
                    "EnumDisk::GetDriveLetter VOLUME volume mount path C:\\Mount\\ is not a drive letter")));
}

TEST(GetDriveLetter, SeveralRoots_IsTheSmallest) {
    EXPECT_EQ(LetterOf({L"E:\\", L"D:\\"}), L"D:\\");
}

TEST(GetDriveLetter, NullArguments_AreFailedAssertionsAndGoOn) {
    const support::LoggerCapture log;
    EXPECT_EQ(EnumDisk().GetDriveLetter(nullptr, nullptr, 0), L"");
    EXPECT_TRUE(log.ContainsPart(support::kHostWarning, "NULL != volume_name")) << log;
    EXPECT_TRUE(log.ContainsPart(support::kHostWarning, "NULL != mount_paths")) << log;
    EXPECT_TRUE(log.ContainsPart(support::kHostWarning, "ASSERTION FAILED, src/common/enumdisk:")) << log;
}

TEST(IsDriveLetter, EveryForm_IsJudgedByLengthAndCharacters) {
    const EnumDisk enumerator;
    EXPECT_TRUE(enumerator.IsDriveLetter(L"c:\\", 3));
    EXPECT_TRUE(enumerator.IsDriveLetter(L"Z:\\", 3));
    EXPECT_FALSE(enumerator.IsDriveLetter(L"C:\\", 2));
    EXPECT_FALSE(enumerator.IsDriveLetter(L"C:\\x", 4));
    EXPECT_FALSE(enumerator.IsDriveLetter(L"1:\\", 3));
    EXPECT_FALSE(enumerator.IsDriveLetter(L"C;\\", 3));
    EXPECT_FALSE(enumerator.IsDriveLetter(L"C:/", 3));
}

TEST(IsDriveLetter, NullPath_IsAFailedAssertionAndFalse) {
    const support::LoggerCapture log;
    EXPECT_FALSE(EnumDisk().IsDriveLetter(nullptr, 3));
    EXPECT_TRUE(log.ContainsPart(support::kHostWarning, "NULL != mount_path")) << log;
}

}  // namespace
