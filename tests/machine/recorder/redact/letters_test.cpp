#include "machine/recorder/redact/letters.h"

#include <gtest/gtest.h>

namespace {

using recorder::FoldedUnits;
using recorder::MadeText;
using recorder::TellsNothing;
using recorder::WithCaseOf;

TEST(TellsNothing, SingleLetterFewDigitsAndZeros_TellNothing) {
    for (const wchar_t* text :
         {L"", L"A", L"7", L"042", L"999", L"00000000", L"0000-0000", L"--- ", L"_X_"}) {
        EXPECT_TRUE(TellsNothing(text)) << text;
    }
}

TEST(TellsNothing, TwoLettersFourDigitsOrAnotherScript_Tell) {
    for (const wchar_t* text : {L"AB", L"OS", L"D1", L"2021", L"0000-0001", L"\x5F20", L"\xD83D"}) {
        EXPECT_FALSE(TellsNothing(text)) << text;
    }
}

// Class by class: what each unit of the made text must be.
TEST(MadeText, EveryUnit_StaysInItsClass) {
    std::mt19937 random(7);
    const std::wstring original = FoldedUnits(L"aZ9-\xE4\x416\x5F20\xD83D\xDE00 \xD800");
    for (int i = 0; i < 1000; ++i) {
        const std::wstring made = MadeText(original, random);
        ASSERT_EQ(made.size(), original.size());
        const auto between = [&](std::size_t at, wchar_t first, wchar_t last) {
            return made[at] >= first && made[at] <= last;
        };
        ASSERT_TRUE(between(0, L'A', L'Z') && between(1, L'A', L'Z') && between(2, L'0', L'9'));
        ASSERT_EQ(made[3], L'-');
        ASSERT_TRUE(between(4, 0xC0, 0xFF) && between(5, 0x80, 0xD7FF) && between(6, 0x80, 0xD7FF));
        ASSERT_TRUE(between(7, 0xD800, 0xDBFF) && between(8, 0xDC00, 0xDFFF)) << "a pair stays one";
        ASSERT_EQ(made[9], L' ');
        ASSERT_TRUE(between(10, 0xD800, 0xDBFF)) << "half a pair stays one";
    }
}

TEST(WithCaseOf, LettersOfTheOriginal_GiveTheirCase) {
    EXPECT_EQ(WithCaseOf(L"aB-9\xE4\xC4", L"XY-7\xC5\xC6"), L"xY-7\xE5\xC6");
}

// Two texts that are equal without regard to case stay so, whatever is made of them.
TEST(WithCaseOf, TextsThatDifferInCase_StayEqualWithoutIt) {
    std::mt19937 random(3);
    const std::wstring lower = L"m\xFCller \x436\xFF41";
    const std::wstring upper = FoldedUnits(lower);
    for (int i = 0; i < 1000; ++i) {
        const std::wstring made = MadeText(upper, random);
        ASSERT_EQ(FoldedUnits(WithCaseOf(lower, made)), FoldedUnits(WithCaseOf(upper, made)));
    }
}

}  // namespace
