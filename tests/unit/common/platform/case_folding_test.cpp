#include "common/platform/case_folding.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

TEST(CaseFolding, EqualFolded_OtherCase_IsEqual) {
    EXPECT_TRUE(EqualFolded(L"HarddiskVolume1", L"HARDDISKVOLUME1"));
    EXPECT_TRUE(EqualFolded(L"", L""));
}

TEST(CaseFolding, EqualFolded_OtherTextOrLength_IsNot) {
    EXPECT_FALSE(EqualFolded(L"HarddiskVolume1", L"HarddiskVolume2"));
    EXPECT_FALSE(EqualFolded(L"HarddiskVolume1", L"HarddiskVolume"));
    EXPECT_FALSE(EqualFolded(L"@", L"`"));  // 0x20 apart, like the two cases of a letter
}

TEST(CaseFolding, StartsWithFolded_Prefix_IsFound) {
    EXPECT_TRUE(StartsWithFolded(L"volume{1}", L"Volume{"));
    EXPECT_TRUE(StartsWithFolded(L"volume{1}", L""));
    EXPECT_FALSE(StartsWithFolded(L"Volume", L"Volume{"));
    EXPECT_FALSE(StartsWithFolded(L"XVolume{1}", L"Volume{"));
}

TEST(CaseFolding, LettersBeyondAscii_AreFoldedInAnyLocale) {
    EXPECT_TRUE(EqualFolded(L"\x00C4 \x20AC \x0416", L"\x00E4 \x20AC \x0436"));
    EXPECT_FALSE(EqualFolded(L"\x00C4", L"\x00F6"));
    EXPECT_FALSE(LessFolded()(L"\x00C4", L"\x00E4"));
    EXPECT_FALSE(LessFolded()(L"\x00E4", L"\x00C4"));
}

TEST(CaseFolding, ViewOfNothing_IsAnEmptyText) {
    EXPECT_TRUE(EqualFolded(std::wstring_view(), L""));
    EXPECT_TRUE(LessFolded()(std::wstring_view(), L"a"));
}

TEST(CaseFolding, LessFolded_TwoTexts_AreInOneOrder) {
    EXPECT_TRUE(LessFolded()(L"a", L"B"));
    EXPECT_FALSE(LessFolded()(L"B", L"a"));
    EXPECT_TRUE(LessFolded()(L"ab", L"ABC"));
    EXPECT_FALSE(LessFolded()(L"ABC", L"ab"));
    EXPECT_FALSE(LessFolded()(L"AbC", L"aBc"));
    EXPECT_FALSE(LessFolded()(L"", L""));
}

}  // namespace
