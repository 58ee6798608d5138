#include "common/xml/xml_characters.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::wstring Replaced(std::wstring text) {
    ReplaceForbiddenCharacters(text);
    return text;
}

// The characters that XML 1.0 allows (production 2, Char), as far as one UTF-16 unit represents them.
bool IsXmlCharacter(unsigned unit) {
    return unit == 0x9 || unit == 0xA || unit == 0xD || (unit >= 0x20 && unit <= 0xD7FF) ||
           (unit >= 0xE000 && unit <= 0xFFFD);
}

TEST(ForbiddenCharacters, EveryUnitAlone_IsKeptOrReplacedAsXmlDemands) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const auto letter = static_cast<wchar_t>(unit);
        const std::wstring expected = {L'a', IsXmlCharacter(unit) ? letter : L'\xFFFD', L'z'};
        ASSERT_EQ(Replaced({L'a', letter, L'z'}), expected) << std::hex << unit;
    }
}

TEST(ForbiddenCharacters, PlainLength_NeverPassesACharacterThatMayBeReplaced) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const std::wstring text = {L'a', static_cast<wchar_t>(unit)};
        if (PlainLength(text) == text.size()) {
            ASSERT_TRUE(IsXmlCharacter(unit)) << std::hex << unit;
        }
    }
    EXPECT_EQ(PlainLength(L""), 0U);
    EXPECT_EQ(PlainLength(L"Disk 0 \x00E9\x4E2D"), 9U) << "a usual text needs no second look";
}

struct TextCase {
    const char* name;
    std::wstring text;
    std::wstring expected;
};

class ForbiddenCharactersInTexts : public testing::TestWithParam<TextCase> {};

TEST_P(ForbiddenCharactersInTexts, OnlyTheyAreReplaced) {
    EXPECT_EQ(Replaced(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ForbiddenCharactersInTexts,
    testing::Values(TextCase{"Empty", L"", L""},
                    TextCase{"Clean", L"Disk \x00E9\x4E2D \xE000", L"Disk \x00E9\x4E2D \xE000"},
                    TextCase{"FirstAndLast", L"\x0001x\x001F", L"\xFFFDx\xFFFD"},
                    TextCase{"InARow", L"\x0001\x0002\xFFFE\xFFFF", L"\xFFFD\xFFFD\xFFFD\xFFFD"},
                    TextCase{"Blanks", L"\t\n\r", L"\t\n\r"},
                    TextCase{"FirstAndLastPair", L"\xD800\xDC00\xDBFF\xDFFF", L"\xD800\xDC00\xDBFF\xDFFF"},
                    TextCase{"PairAtTheEnd", L"x\xD83D\xDE00", L"x\xD83D\xDE00"},
                    TextCase{"HighAtTheEnd", L"x\xD83D", L"x\xFFFD"},
                    TextCase{"LowAtTheEnd", L"x\xDE00", L"x\xFFFD"},
                    TextCase{"HalvesInTheWrongOrder", L"\xDE00\xD83D", L"\xFFFD\xFFFD"},
                    TextCase{"HighBeforeAPair", L"\xD83D\xD83D\xDE00", L"\xFFFD\xD83D\xDE00"},
                    TextCase{"LowAfterAPair", L"\xD83D\xDE00\xDE00", L"\xD83D\xDE00\xFFFD"},
                    TextCase{"HighBeforeAControl", L"\xD83D\x0001", L"\xFFFD\xFFFD"}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
