#include "common/text/multi_string.h"

#include "common/windows.h"
#include "support/text.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct Block {
    std::vector<wchar_t> characters;
    std::vector<std::wstring> entries;
};

class MultiStrings : public testing::TestWithParam<Block> {};

TEST_P(MultiStrings, Split_Block_GivesItsCompleteEntries) {
    const Block& block = GetParam();
    EXPECT_THAT(SplitMultiString(block.characters.data(), block.characters.size()),
                ElementsAreArray(block.entries));
}

INSTANTIATE_TEST_SUITE_P(
    Table, MultiStrings,
    testing::Values(Block{{}, {}},                                      // empty block
                    Block{{0}, {}},                                     // empty list
                    Block{{0, 0}, {}},                                  //
                    Block{{0, L'a', 0, 0}, {}},                         // the empty first entry ends the list
                    Block{{L'a'}, {}},                                  // not terminated
                    Block{{L'a', 0}, {L"a"}},                           // list not terminated
                    Block{{L'a', 0, 0}, {L"a"}},                        //
                    Block{{L'a', 0, L'b', L'c', 0, 0}, {L"a", L"bc"}},  //
                    Block{{L'a', 0, L'b', L'c', 0}, {L"a", L"bc"}},     // list not terminated
                    Block{{L'a', 0, L'b', L'c'}, {L"a"}},               // second entry truncated
                    Block{{L'a', 0, 0, L'b', 0, 0}, {L"a"}},            // nothing is read after the end
                    Block{{L'a', 0, L'a', 0, 0}, {L"a", L"a"}},         // duplicates are kept
                    Block{{L' ', 0, L'\n', 0, 0}, {L" ", L"\n"}},       // white space is kept
                    Block{{0xD83D, 0xDE00, 0, 0xD83D, 0, 0}, {{0xD83D, 0xDE00}, {0xD83D}}}));

TEST(MultiString, Split_NothingMayBeRead_ReadsNothing) {
    EXPECT_THAT(SplitMultiString(nullptr, 0), IsEmpty());
}

TEST(MultiString, Split_BlockThatEndsAtAForbiddenPage_IsReadNoFurther) {
    constexpr std::size_t kPage = 4096;
    auto* const memory =
        static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ASSERT_NE(memory, nullptr);
    DWORD previous = 0;
    ASSERT_NE(VirtualProtect(memory + kPage, kPage, PAGE_NOACCESS, &previous), FALSE);
    const std::wstring text(L"one\0two", 7);
    auto* const block = reinterpret_cast<wchar_t*>(memory + kPage) - text.size();
    text.copy(block, text.size());

    EXPECT_THAT(SplitMultiString(block, text.size()), ElementsAre(L"one"));
    EXPECT_THAT(SplitMultiString(block, text.size(), CutEntry::kTaken), ElementsAre(L"one", L"two"));

    VirtualFree(memory, 0, MEM_RELEASE);
}

TEST(MultiString, Split_CutEntriesAreTaken_CutsNoOther) {
    const std::wstring block(L"one\0two\0\0rest", 13);
    const auto taken = [&](std::size_t count) {
        return SplitMultiString(block.data(), count, CutEntry::kTaken);
    };
    EXPECT_THAT(taken(0), IsEmpty());
    EXPECT_THAT(taken(2), ElementsAre(L"on"));
    EXPECT_THAT(taken(3), ElementsAre(L"one"));
    EXPECT_THAT(taken(4), ElementsAre(L"one"));
    EXPECT_THAT(taken(5), ElementsAre(L"one", L"t"));
    EXPECT_THAT(taken(8), ElementsAre(L"one", L"two"));
    EXPECT_THAT(taken(13), ElementsAre(L"one", L"two"));
}

}  // namespace
