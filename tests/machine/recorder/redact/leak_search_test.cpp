#include "machine/recorder/redact/leak_search.h"

#include "machine/description/text.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using recorder::Bytes;
using recorder::FindLeaks;
using recorder::Observations;
using recorder::Replacements;
using recorder::SearchedTexts;

// Eight units of a name, an everyday word, a short label, a folder, a name with parts, ids.
Replacements Private() {
    Replacements replacements;
    for (const wchar_t* text :
         {L"Wessling", L"Archive", L"Recovery", L"OS", L"M\xFCller AG", L"  WD-WCC4E2"}) {
        replacements.Text(text);
    }
    replacements.NoteWhole(L"backup.example.com");
    replacements.Guid(*machine::ParseGuid("{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}"));
    replacements.Id(0x5C82F0A3);
    replacements.Settle();
    return replacements;
}

std::vector<std::string> LeaksIn(const Observations& observations) {
    std::vector<std::string> values;
    for (const auto& leak : FindLeaks(Private(), SearchedTexts(observations))) {
        values.push_back(leak.value);
    }
    return values;
}

Observations WithBytes(const char* call, const Bytes& bytes) {
    Observations observations;
    recorder::Answer answer;
    answer.bytes = bytes;
    observations.Add({{call, L"\\\\.\\PhysicalDrive0", 0, 512}, answer});
    return observations;
}

Bytes Utf16(std::wstring_view text) {
    Bytes bytes(text.size() * sizeof(wchar_t));
    std::memcpy(bytes.data(), text.data(), bytes.size());
    return bytes;
}

Bytes EightBit(std::string_view text) {
    return {text.begin(), text.end()};
}

constexpr const char* kLayout = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX";

TEST(LeakSearch, LongText_IsFoundInEveryForm) {
    Bytes odd = Utf16(L"x WESSLING x");
    odd.insert(odd.begin(), 0x7F);
    for (const Bytes& bytes :
         {EightBit("...wessling..."), Utf16(L"at Wessling's"), odd, EightBit("5765 576573736c696e67"),
          Utf16(L"57657373"
                L"6C696E67"),
          EightBit("570065007300730 5700650073007300"
                   "6C0069006E006700")}) {
        EXPECT_EQ(LeaksIn(WithBytes(kLayout, bytes)), std::vector<std::string>{"Wessling"});
    }
}

TEST(LeakSearch, TextOutsideAscii_IsFoundInUtf8AndInTheCodePage) {
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, EightBit("M\xC3\xBCller AG"))).size(), 1U);
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, EightBit("M\xFCller AG"))).size(), 1U) << "code page 1252";
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, Utf16(L"m\xFCller ag"))).size(), 1U);
}

TEST(LeakSearch, EverydayAndShortTexts_AreFoundAsWholesAndPartsOfPaths) {
    for (const wchar_t* text : {L"Archive", L"OS", L"C:\\os\\x", L"\\Device\\Os", L"x|ARCHIVE"}) {
        EXPECT_EQ(LeaksIn(WithBytes("QueryDosDeviceW", Utf16(text))).size(), 1U) << text;
    }
    for (const wchar_t* text : {L"OSType", L"The archive agent", L"POS", L"C:\\Recovery\\x"}) {
        EXPECT_TRUE(LeaksIn(WithBytes("QueryDosDeviceW", Utf16(text))).empty()) << text;
    }
}

TEST(LeakSearch, SpacesAroundASerial_DoNotHideIt) {
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, EightBit("S/N WD-WCC4E2.")))[0], "WD-WCC4E2");
}

TEST(LeakSearch, NameThatIsReplacedInParts_IsFoundAsAWhole) {
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, Utf16(L"at backup.example.com:80")))[0], "backup.example.com");
}

TEST(LeakSearch, GuidsAndIds_AreFoundAsTextAndBytes) {
    const GUID guid = *machine::ParseGuid("{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}");
    Bytes bytes(40);
    std::memcpy(bytes.data() + 11, &guid, sizeof(guid));
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, bytes)).size(), 1U);
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, Utf16(L"x6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1"))).size(), 1U);
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, {0, 0, 0xA3, 0xF0, 0x82, 0x5C, 0, 0})).size(), 1U);
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, Utf16(L"Disk 5c82f0a3"))).size(), 1U);
    EXPECT_EQ(LeaksIn(WithBytes(kLayout, EightBit("1552085155"))).size(), 1U)
        << "0x5C82F0A3 as decimal number";
}

TEST(LeakSearch, ObjectsAndNamesOfParts_AreSearched) {
    Observations observations;
    recorder::Answer listing;
    listing.parts = {{0, L"SCSI#Wessling#1", L"SymbolicLink", 0, 0, {}}};
    observations.Add({{"ZwQueryDirectoryObject", L"\\GLOBAL??", 0, 260}, listing});
    observations.Add({{"GetDriveTypeW", L"C:\\Wessling\\", 0, 0}, {}});
    EXPECT_EQ(LeaksIn(observations).size(), 2U);
}

// "OS" is a word of the system in one property, and a leak in another.
TEST(LeakSearch, WordsThatTheSystemChooses_AreNoLeaks) {
    const auto of_property = [](const wchar_t* property) {
        Observations observations;
        recorder::Answer answer;
        answer.parts = {{0, property, L"VT_BSTR", 0, 0, Utf16(L"OS")}};
        observations.Add({{"IWbemServices::ExecQuery", L"Win32_OperatingSystem", 0, 0}, answer});
        return LeaksIn(observations).size();
    };
    EXPECT_EQ(of_property(L"Status"), 0U);
    EXPECT_EQ(of_property(L"Caption"), 1U);
    EXPECT_EQ(of_property(L"SomethingNew"), 1U);
}

TEST(LeakSearch, Description_IsSearchedInValuesAndNames) {
    const auto leaks = [](const char* json) {
        return FindLeaks(Private(), SearchedTexts(nlohmann::ordered_json::parse(json)));
    };
    EXPECT_EQ(leaks(R"({"volumes": [{"label": "at WESSLING"}]})")[0].place, "/volumes/0/label");
    EXPECT_EQ(leaks(R"({"dosDevices": {"Os": "\\Device\\X"}})").size(), 1U);
    EXPECT_EQ(leaks(R"({"wmi": {"Win32_OperatingSystem": [{"Caption": "Archive"}]}})").size(), 1U);
    EXPECT_EQ(
        leaks(R"({"volumes": [{"label": {"utf16": "0057 0065 0073 0073 006C 0069 006E 0067"}}]})").size(),
        1U);
    EXPECT_EQ(
        leaks(
            R"({"registry": {"SYSTEM": {"Key": {"type": "REG_BINARY", "bytes": "57 65 73 73 6c 69 6e 67"}}}})")
            .size(),
        1U);
    EXPECT_EQ(leaks(R"({"disks": [{"signature": 1552085155}]})").size(), 1U);
    EXPECT_TRUE(leaks(R"({"os": "archive agent", "volumes": [{"fileSystem": "OS"}]})").empty())
        << "a key of the format, a part of a text, and a word of the system";
}

}  // namespace
