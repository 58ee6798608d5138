#include "machine/recorder/redact/redact_texts.h"

#include "machine/recorder/redact/everyday_words.h"

#include <gtest/gtest.h>

namespace {

using recorder::Content;
using recorder::RedactedText;
using recorder::Replacements;

// The texts, redacted together.
std::vector<std::wstring> Redacted(const std::vector<std::pair<Content, std::wstring>>& texts) {
    Replacements replacements;
    for (const auto& [content, text] : texts) {
        RedactedText(content, text, replacements);
    }
    replacements.Settle();
    std::vector<std::wstring> redacted;
    for (const auto& [content, text] : texts) {
        redacted.push_back(RedactedText(content, text, replacements));
    }
    return redacted;
}

std::wstring Alone(Content content, const std::wstring& text) {
    return Redacted({{content, text}}).front();
}

TEST(RedactedText, PathsThatEverySystemHas_Stay) {
    for (const wchar_t* path :
         {L"\\Device\\HarddiskVolume3", L"\\\\?\\GLOBALROOT\\Device\\Harddisk0\\DR0",
          L"\\\\.\\PhysicalDrive12", L"C:\\",
          L"C:\\Windows\\system32\\config\\systemprofile\\AppData\\Local\\Temp", L"PIPE",
          L"\\Device\\00000087", L"\\Device\\HarddiskVolumeShadowCopy2", L"C:\\Users\\"}) {
        EXPECT_EQ(Alone(Content::kPath, path), path);
    }
}

TEST(RedactedText, FoldersAndDevicesOfOthers_AreReplaced) {
    const std::wstring folder = Alone(Content::kPath, L"C:\\Projects\\Wessling GmbH\\");
    EXPECT_TRUE(folder.starts_with(L"C:\\"));
    EXPECT_EQ(folder[11], L'\\');
    EXPECT_EQ(folder[20], L' ');
    EXPECT_EQ(folder.find(L"Projects"), std::wstring::npos);
    EXPECT_EQ(folder.find(L"Wessling"), std::wstring::npos);
    // The name of a device is the name of a folder of its owner, not that of the device.
    EXPECT_NE(Alone(Content::kPath, L"C:\\HarddiskVolume3\\"), L"C:\\HarddiskVolume3\\");
    EXPECT_NE(Alone(Content::kPath, L"\\Device\\RiegelVolumeK"), L"\\Device\\RiegelVolumeK");
}

TEST(RedactedText, GuidInAPath_IsTheSameInAnyCase) {
    const auto redacted =
        Redacted({{Content::kPath, L"\\\\?\\Volume{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}\\"},
                  {Content::kPath, L"VOLUME{6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1}"}});
    EXPECT_TRUE(redacted[0].starts_with(L"\\\\?\\Volume{"));
    EXPECT_EQ(redacted[0].find(L"6f1f4a52"), std::wstring::npos);
    EXPECT_EQ(redacted[0].size(), 49U);
    std::wstring lower = redacted[1].substr(6);
    for (wchar_t& unit : lower) {
        unit = static_cast<wchar_t>(std::towlower(unit));
    }
    EXPECT_EQ(redacted[0].substr(10, 38), lower);
    EXPECT_NE(redacted[1].substr(6), lower) << "digits in upper case stay so";
}

TEST(RedactedText, Account_SharesItsPartsWithComputerAndDomain) {
    const auto redacted = Redacted({{Content::kName, L"WESSLING\\anna.m"},
                                    {Content::kName, L"Wessling"},
                                    {Content::kName, L"wessling.example.com"},
                                    {Content::kText, L"Wessling"}});
    EXPECT_EQ(redacted[1], redacted[3]) << "a label that is the name of the computer";
    std::wstring upper = redacted[1];
    for (wchar_t& unit : upper) {
        unit = static_cast<wchar_t>(std::towupper(unit));
    }
    EXPECT_EQ(redacted[0].substr(0, 9), upper + L"\\");
    EXPECT_EQ(redacted[2][8], L'.');
    EXPECT_EQ(redacted[2].find(L"example"), std::wstring::npos);
}

TEST(RedactedText, SystemNameWithPaths_KeepsWhatWindowsWrote) {
    EXPECT_EQ(Alone(Content::kTextAndPaths, L"Windows 11 Pro|C:\\Windows|\\Device\\Harddisk0\\Partition3"),
              L"Windows 11 Pro|C:\\Windows|\\Device\\Harddisk0\\Partition3");
    EXPECT_EQ(Alone(Content::kTextAndPaths, L"Windows 11 Pro|C:\\Secret").substr(0, 18),
              L"Windows 11 Pro|C:\\");
    EXPECT_NE(Alone(Content::kTextAndPaths, L"Windows 11 Pro|C:\\Secret").substr(18), L"Secret");
}

TEST(RedactedText, DeviceInstance_KeepsBusAndModel) {
    const std::wstring id = Alone(Content::kInstance, L"USBSTOR\\DISK&VEN_X&PROD_Y\\4C5300012345&0");
    EXPECT_TRUE(id.starts_with(L"USBSTOR\\DISK&VEN_X&PROD_Y\\"));
    EXPECT_EQ(id.find(L"4C5300012345"), std::wstring::npos);
    EXPECT_EQ(id[38], L'&');
}

TEST(RedactedText, StartOptions_KeepWhatTheSystemChooses) {
    EXPECT_EQ(Alone(Content::kOptions, L" NOEXECUTE=OPTIN  FVEBOOT=1234567"),
              L" NOEXECUTE=OPTIN  FVEBOOT=1234567");
    const std::wstring debugged = Alone(Content::kOptions, L"DEBUG  KEY=abc1.def2.ghi3.jkl4");
    EXPECT_TRUE(debugged.starts_with(L"DEBUG  KEY="));
    EXPECT_EQ(debugged.find(L"abc1"), std::wstring::npos);
}

TEST(RedactedText, UsualPartitionName_Stays) {
    EXPECT_EQ(Alone(Content::kPartition, L"Basic data partition"), L"Basic data partition");
    EXPECT_NE(Alone(Content::kPartition, L"Payroll"), L"Payroll");
}

TEST(RedactedText, TextThatStays_IsReplacedIfItIsAPrivateOne) {
    const auto redacted =
        Redacted({{Content::kStays, L"Brennholt Tower"}, {Content::kText, L"BRENNHOLT TOWER"}});
    EXPECT_NE(redacted[0], L"Brennholt Tower");
    EXPECT_EQ(Alone(Content::kStays, L"Brennholt Tower"), L"Brennholt Tower");
}

TEST(IsEveryday, WordsOfTheListAndShortOnes_AreEveryday) {
    for (const wchar_t* text :
         {L"Recovery", L"System Reserved", L"archive_01", L"NEW-VOLUME 999", L"Recovery "}) {
        EXPECT_TRUE(recorder::IsEveryday(text)) << text;
    }
}

TEST(IsEveryday, NamesLongNumbersAndOtherScripts_AreNot) {
    for (const wchar_t* text : {L"Wessling", L"archive Wessling", L"archive2021",
                                L"Gr\xFC\xDF"
                                L"e",
                                L"recoveryx", L"WD-WCC4E2", L"S3Z8NB0K", L"ABC-DEF", L"Archive/1", L"123"}) {
        EXPECT_FALSE(recorder::IsEveryday(text)) << text;
    }
}

}  // namespace
