#include "machine/description/text.h"

#include <gmock/gmock.h>

#include <string_view>

namespace machine {
namespace {

TEST(WideText, UnitsOfBytes_AreLittleEndian) {
    EXPECT_EQ(WideText({0x41, 0x00, 0xE9, 0x20}), L"A\x20E9");
}

TEST(WideText, NoBytes_AreNoText) {
    EXPECT_EQ(WideText({}), L"");
}

TEST(WideText, OddByteAtTheEnd_IsLeftOut) {
    EXPECT_EQ(WideText({0x41, 0x00, 0x42}), L"A");
    EXPECT_EQ(WideText({0x41}), L"");
}

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TerminatedTexts, List_GivesEachTextAndTheEmptyOneAtItsEnd) {
    EXPECT_THAT(TerminatedTexts(std::wstring_view(L"one\0two\0\0", 9)), ElementsAre(L"one", L"two", L""));
}

TEST(TerminatedTexts, EmptyTextAmongOthers_IsOne) {
    EXPECT_THAT(TerminatedTexts(std::wstring_view(L"one\0\0two\0", 9)), ElementsAre(L"one", L"", L"two"));
}

TEST(TerminatedTexts, LastTextWithoutTerminator_IsTaken) {
    EXPECT_THAT(TerminatedTexts(std::wstring_view(L"one\0two", 7)), ElementsAre(L"one", L"two"));
}

TEST(TerminatedTexts, NoText_HasNone) {
    EXPECT_THAT(TerminatedTexts(L""), IsEmpty());
}

}  // namespace
}  // namespace machine
