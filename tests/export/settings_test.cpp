#include "export/capture_fixture.h"
#include "export/guarded_text.h"

#include <gmock/gmock.h>

namespace {

using support::Error;
using support::LogCapture;
using testing::ElementsAre;
using testing::StartsWith;

using Settings = ExportTest;

TEST_F(Settings, Version_IsAlwaysFour) {
    EXPECT_EQ(library_.GetOrvaneVersion(), 4U);
    library_.SetXmlFormat(3);
    library_.Select({L"a"});
    EXPECT_EQ(library_.GetOrvaneVersion(), 4U);
}

TEST_F(Settings, SetXmlFormat_IsTracedAndSaysNothingElse) {
    const LogCapture log(library_.SetEventFunc);
    library_.SetXmlFormat(4294967295U);
    ASSERT_EQ(log.all().size(), 2U) << log;
    EXPECT_EQ(log.all()[0].level, support::kHostTrace);
    EXPECT_THAT(log.all()[0].text, StartsWith("Entering function SetXmlFormat line "));
    EXPECT_EQ(log.all()[1].level, support::kHostTrace);
    EXPECT_THAT(log.all()[1].text, StartsWith("Leaving function SetXmlFormat line "));
}

// --- The selected volumes.

TEST_F(Settings, NullList_ClearsTheSelection) {
    EXPECT_EQ(library_.Select({L"a", L"b"}), 2);
    const LogCapture log(library_.SetEventFunc);
    EXPECT_EQ(library_.SetupSelectedVolumesList(nullptr, 0), 0);
    EXPECT_THAT(log.Messages(), ElementsAre(Error("SetupSelectedVolumesList: volume_guid_list is NULL")));
}

TEST_F(Settings, NullListWithACount_IsNotRead) {
    EXPECT_EQ(library_.SetupSelectedVolumesList(nullptr, 1000), 0);
    EXPECT_EQ(library_.SetupSelectedVolumesList(nullptr, 0xFFFFFFFFFFFFFFFFU), 0);
}

TEST_F(Settings, EmptyList_ClearsTheSelection) {
    EXPECT_EQ(library_.Select({L"a", L"b"}), 2);
    const LogCapture log(library_.SetEventFunc);
    EXPECT_EQ(library_.SetupSelectedVolumesList(L"\0", 2), 0);
    EXPECT_THAT(log.Messages(), ElementsAre(Error("SetupSelectedVolumesList: volume_guid_list is empty")));
}

TEST_F(Settings, List_ReplacesTheOneBefore) {
    EXPECT_EQ(library_.Select({L"a", L"b", L"c"}), 3);
    EXPECT_EQ(library_.Select({L"d"}), 1);
}

TEST_F(Settings, Entries_AreNeitherJudgedNorSorted) {
    EXPECT_EQ(library_.Select({L" ", L"a", L"A", L"a", L"no GUID at all"}), 5);
}

struct Multistring {
    const char* name;
    std::wstring_view text;
    std::uint64_t count;
    std::int64_t entries;
};

void PrintTo(const Multistring& list, std::ostream* out) {
    *out << list.name;
}

using namespace std::string_view_literals;

const Multistring kLists[] = {
    {"Complete", L"one\0two\0three\0\0"sv, 15, 3},
    {"CompleteInALargerBuffer", L"one\0two\0\0rest\0\0"sv, 15, 2},
    {"EndsWithTheCount", L"one\0two\0"sv, 8, 2},
    {"LastEntryWithoutEnd", L"one\0two"sv, 7, 2},
    {"OnlyEntryWithoutEnd", L"one"sv, 3, 1},
    {"CutInTheFirstEntry", L"one\0two\0\0"sv, 2, 1},
    {"CutBeforeTheFirstEnd", L"one\0two\0\0"sv, 3, 1},
    {"CutBehindTheFirstEnd", L"one\0two\0\0"sv, 4, 1},
    {"CutInTheSecondEntry", L"one\0two\0\0"sv, 6, 2},
    {"NoCharacters", L""sv, 0, 0},
    {"CountOfZero", L"one\0\0"sv, 0, 0},
    {"OneCharacter", L"\0"sv, 1, 0},
    {"HugeCount", L"one\0two\0three\0\0"sv, 0x7FFFFFFFFFFFFFFFU, 3},
    {"LargestCount", L"one\0two\0three\0\0"sv, 0xFFFFFFFFFFFFFFFFU, 3},
};

class SelectedVolumesList : public ExportTest, public testing::WithParamInterface<Multistring> {};

TEST_P(SelectedVolumesList, Entries_AreTakenWithinTheCountAlone) {
    const GuardedText text(GetParam().text);
    EXPECT_EQ(library_.SetupSelectedVolumesList(text.get(), GetParam().count), GetParam().entries);
}

INSTANTIATE_TEST_SUITE_P(Lists, SelectedVolumesList, testing::ValuesIn(kLists),
                         [](const auto& list) { return std::string(list.param.name); });

TEST_F(Settings, ManyEntries_AreAllTaken) {
    EXPECT_EQ(library_.Select(std::vector<std::wstring>(10000, L"\\\\?\\Volume{0}\\")), 10000);
}

TEST_F(Settings, LongEntry_IsTakenWhole) {
    EXPECT_EQ(library_.Select({std::wstring(100000, L'x'), L"y"}), 2);
}

// --- The list is kept unchanged from call to call.

class KeptSelection : public CaptureTest {
protected:
    std::vector<std::string> Unknown() {
        log_.Clear();
        EXPECT_EQ(Capture(0).status, ORVANE_FAILED);
        std::vector<std::string> errors = log_.Lines(support::kHostError);
        errors.pop_back();
        return errors;
    }
};

TEST_F(KeptSelection, EntryThatTheCountCutsOff_IsJudgedAsFarAsItGoes) {
    EXPECT_EQ(library_.SetupSelectedVolumesList(L"\\\\?\\one\0\0", 6), 1);
    EXPECT_THAT(Unknown(),
                ElementsAre("Backup cannot proceed. Failed to find any information about volume \\\\?\\on."));
}

TEST_F(KeptSelection, Entries_ReachEveryCaptureAsTheyWereGiven) {
    library_.Select({L"b", L" A ", L"b"});
    for (int call = 0; call < 2; ++call) {
        EXPECT_THAT(Unknown(),
                    ElementsAre("Backup cannot proceed. Failed to find any information about volume b.",
                                "Backup cannot proceed. Failed to find any information about volume  A .",
                                "Backup cannot proceed. Failed to find any information about volume b."));
    }
}

TEST_F(KeptSelection, ClearedList_SelectsNothing) {
    library_.Select({L"b"});
    library_.SetupSelectedVolumesList(nullptr, 0);
    EXPECT_EQ(Capture(0).status, ORVANE_BUFFER_TOO_SMALL);
}

}  // namespace
