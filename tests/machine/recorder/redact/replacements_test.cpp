#include "machine/recorder/redact/replacements.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/map_text.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using recorder::Replacements;

GUID Guid(const char* text) {
    return *machine::ParseGuid(text);
}

std::string Text(const GUID& guid) {
    return machine::GuidText(guid);
}

// Texts of up to twelve units of several scripts, of which some contain others and some are not valid UTF-16.
std::vector<std::wstring> RandomTexts(unsigned seed) {
    constexpr std::wstring_view kUnits = L"aAbB01_- \xE4\xC4\xDF\x416\x436\x5F20\xFF41\xD83D\xDE00";
    std::mt19937 random(seed);
    std::vector<std::wstring> texts;
    while (texts.size() < 60) {
        std::wstring text;
        for (std::size_t size = 2 + random() % 11; text.size() < size;) {
            text += kUnits[random() % kUnits.size()];
        }
        texts.push_back(text);
        texts.push_back(text.substr(0, text.size() / 2 + 1));
    }
    return texts;
}

bool IsAscii(wchar_t unit) {
    return unit < 0x80;
}

TEST(Replacements, RandomTexts_KeepTheirForm) {
    for (unsigned seed = 1; seed <= 50; ++seed) {
        SCOPED_TRACE(seed);
        const std::vector<std::wstring> texts = RandomTexts(seed);
        Replacements replacements;
        for (const std::wstring& text : texts) {
            EXPECT_EQ(replacements.Text(text), text) << "it is only noted";
        }
        replacements.Settle();
        for (const std::wstring& text : texts) {
            const std::wstring made = replacements.Text(text);
            ASSERT_EQ(made.size(), text.size());
            for (std::size_t i = 0; i < text.size(); ++i) {
                ASSERT_EQ(IsAscii(made[i]), IsAscii(text[i]));
            }
            ASSERT_EQ(made == text, recorder::TellsNothing(text));
        }
    }
}

TEST(Replacements, RandomTexts_StayEqualAndDifferent) {
    for (unsigned seed = 1; seed <= 50; ++seed) {
        SCOPED_TRACE(seed);
        const std::vector<std::wstring> texts = RandomTexts(seed);
        Replacements replacements;
        for (const std::wstring& text : texts) {
            replacements.Text(text);
        }
        replacements.Settle();
        for (const std::wstring& left : texts) {
            for (const std::wstring& right : texts) {
                if (left.size() > 3 && right.size() > 3) {  // shorter ones may have no room to differ
                    ASSERT_EQ(recorder::FoldedUnits(left) == recorder::FoldedUnits(right),
                              recorder::FoldedUnits(replacements.Text(left)) ==
                                  recorder::FoldedUnits(replacements.Text(right)));
                }
            }
        }
    }
}

TEST(Replacements, SameValues_GetTheSameReplacements) {
    const auto made = [](const wchar_t* other) {
        Replacements replacements;
        replacements.Text(L"Archive");
        replacements.Text(other);
        replacements.Id(0x5C82F0A3);
        replacements.Settle();
        return recorder::MapText(replacements);
    };
    EXPECT_EQ(made(L"Backup"), made(L"Backup"));
    EXPECT_NE(made(L"Backup"), made(L"Ballot")) << "a value alone does not tell its replacement";
}

TEST(Replacements, ReplacementOfAText_IsNoOtherOriginal) {
    Replacements replacements;
    std::vector<std::wstring> texts;
    for (wchar_t first = L'A'; first <= L'E'; ++first) {
        for (wchar_t second = L'A'; second <= L'Z'; ++second) {
            texts.push_back({first, second});
            replacements.Text(texts.back());
        }
    }
    replacements.Settle();
    for (const std::wstring& text : texts) {
        EXPECT_GT(replacements.Text(text).front(), L'E') << "26 texts of 676 begin with each letter";
    }
}

TEST(Replacements, Guids_StayGuidsOfTheirVersion) {
    const GUID random = Guid("{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}");
    const GUID of_time = Guid("{4e1f7b20-9a6d-11ec-b7c1-806e6f6e6963}");
    Replacements replacements;
    replacements.Guid(random);
    replacements.Guid(of_time);
    replacements.Settle();
    EXPECT_EQ(replacements.Guid(random).Data3 >> 12, 4);
    EXPECT_EQ(replacements.Guid(random).Data4[0] >> 6, 2);
    EXPECT_EQ(replacements.Guid(of_time).Data3 >> 12, 1);
    EXPECT_NE(Text(replacements.Guid(of_time)).substr(10), Text(of_time).substr(10));
    EXPECT_EQ(Text(replacements.Guid(GUID{})), "{00000000-0000-0000-0000-000000000000}");
}

TEST(Replacements, Signature_IsTheSameInAVolumeGuid) {
    const GUID volume = Guid("{5c82f0a3-0000-0000-0000-501f00000000}");
    Replacements replacements;
    replacements.Guid(volume);
    replacements.Id(0x5C82F0A3);
    replacements.Settle();
    const std::uint32_t made = replacements.Id(0x5C82F0A3);
    EXPECT_NE(made, 0x5C82F0A3U);
    EXPECT_EQ(replacements.Guid(volume).Data1, made);
    EXPECT_EQ(Text(replacements.Guid(volume)).substr(9), "-0000-0000-0000-501f00000000}");
}

TEST(Replacements, KeptGuidAndIdsThatSayNothing_Stay) {
    const GUID type = Guid("{ebd0a0a2-b9e5-4433-87c0-68b6b72699c7}");
    Replacements replacements;
    replacements.Guid(type);
    replacements.Keep(type);
    for (const std::uint32_t id : {0U, 1U, 0xFFFFFFFFU}) {
        replacements.Id(id);
    }
    replacements.Settle();
    EXPECT_EQ(Text(replacements.Guid(type)), Text(type));
    EXPECT_TRUE(replacements.guids().empty());
    EXPECT_EQ(replacements.Id(0), 0U);
    EXPECT_EQ(replacements.Id(1), 1U);
    EXPECT_EQ(replacements.Id(0xFFFFFFFF), 0xFFFFFFFFU);
}

TEST(Replacements, OrderOfGuidsAndIds_Stays) {
    std::mt19937 random(11);
    std::vector<GUID> guids;
    for (unsigned i = 0; i < 200; ++i) {
        GUID guid = machine::DerivedGuid(std::to_string(i));
        guid.Data1 = i % 3 == 0 ? 7 : guid.Data1;
        if (i % 5 == 0) {
            guid = Guid("{00000000-0000-0000-0000-100000000000}");
            guid.Data1 = static_cast<unsigned long>(random());
        }
        guids.push_back(guid);
    }
    Replacements replacements;
    for (const GUID& guid : guids) {
        replacements.Guid(guid);
        replacements.Id(static_cast<std::uint32_t>(guid.Data1));
    }
    replacements.Settle();
    for (const GUID& left : guids) {
        for (const GUID& right : guids) {
            ASSERT_EQ(Text(left) < Text(right),
                      Text(replacements.Guid(left)) < Text(replacements.Guid(right)));
        }
    }
}

TEST(Replacements, OrderOfDevices_Stays) {
    const std::vector<std::wstring> parts = {L"RiegelVolumeA", L"RiegelVolumeK", L"Fibra",  L"SrvarchDg0",
                                             L"SrvarchDg",     L"Zephyr",        L"zephyr2"};
    const std::vector<std::wstring> known = {L"HarddiskVolume1", L"HarddiskDmVolumes"};
    Replacements replacements;
    for (const std::wstring& part : parts) {
        replacements.Text(part);
        replacements.NoteOrder(L"\\Device\\" + part);
    }
    for (const std::wstring& part : known) {
        replacements.NoteOrder(L"\\Device\\" + part + L"\\SrvarchDg0");
    }
    replacements.Settle();
    std::vector<std::pair<std::wstring, std::wstring>> all;
    for (const std::wstring& part : known) {
        all.emplace_back(part, part);
    }
    for (const std::wstring& part : parts) {
        all.emplace_back(part, replacements.Text(part));
        EXPECT_NE(all.back().first, all.back().second);
    }
    for (const auto& [left, made_left] : all) {
        for (const auto& [right, made_right] : all) {
            EXPECT_EQ(left < right, made_left < made_right) << made_left.size();
        }
    }
}

TEST(Replacements, ValueThatWasNotNoted_IsRefused) {
    Replacements replacements;
    replacements.Settle();
    EXPECT_THROW(replacements.Text(L"Archive"), std::logic_error);
    EXPECT_THROW(replacements.Guid(Guid("{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}")), std::logic_error);
    EXPECT_THROW(replacements.Id(77), std::logic_error);
}

TEST(MapText, EveryReplacement_IsInIt) {
    Replacements replacements;
    replacements.Text(L"Arch\xFCv \xD800");
    replacements.Id(0x5C82F0A3);
    replacements.Guid(Guid("{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}"));
    replacements.Settle();
    const auto map = nlohmann::json::parse(recorder::MapText(replacements));
    ASSERT_EQ(map["texts"].size(), 1U);
    EXPECT_EQ(map["texts"][0]["from"],
              (nlohmann::json{{"utf16", "0041 0072 0063 0068 00FC 0076 0020 D800"}}));
    EXPECT_EQ(map["ids"][0]["from"], 0x5C82F0A3);
    EXPECT_EQ(map["ids"][0]["to"], replacements.Id(0x5C82F0A3));
    EXPECT_EQ(map["guids"][0]["from"], "{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}");
}

}  // namespace
