#include "documents/report/verdicts.h"

#include "documents/text/read_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace documents {

namespace {

using testing::ElementsAre;

std::string ErrorOf(const std::string& json) {
    try {
        ReadVerdicts(json);
    } catch (const ReadError& error) {
        return error.what();
    }
    return "none";
}

TEST(Verdicts, AllMembers_AreRead) {
    const Verdicts verdicts = ReadVerdicts(R"({
        "disks": [{"index": 3, "canBackup": true, "reasons": []}],
        "volumes": [{"id": "\\\\?\\Volume{1}\\", "device": "\\Device\\CdRom0", "mountPoints": ["E:\\", "C:\\Disc\\"],
                     "canBackup": false, "reasons": ["one", "two"], "codes": ["R007", ""]}],
        "selected": [{"volume": "C:", "canBackup": null, "reasons": []}]})");
    ASSERT_TRUE(verdicts.disks && verdicts.disks->size() == 1);
    EXPECT_EQ(verdicts.disks->front().number, 3U);
    EXPECT_EQ(verdicts.disks->front().verdict.can_backup, true);
    ASSERT_TRUE(verdicts.volumes && verdicts.volumes->size() == 1);
    const VolumeVerdict& volume = verdicts.volumes->front();
    EXPECT_EQ(volume.path, R"(\\?\Volume{1}\)");
    EXPECT_EQ(volume.device, R"(\Device\CdRom0)");
    EXPECT_THAT(volume.mount_points, ElementsAre("E:\\", "C:\\Disc\\"));
    EXPECT_EQ(volume.verdict.can_backup, false);
    ASSERT_EQ(volume.verdict.reasons.size(), 2U);
    EXPECT_EQ(volume.verdict.reasons[0].text, "one");
    EXPECT_EQ(volume.verdict.reasons[0].code, "R007");
    EXPECT_EQ(volume.verdict.reasons[1].text, "two");
    EXPECT_EQ(volume.verdict.reasons[1].code, "");
    ASSERT_EQ(verdicts.selected.size(), 1U);
    EXPECT_EQ(verdicts.selected.front().volume, "C:");
    EXPECT_EQ(verdicts.selected.front().verdict.can_backup, std::nullopt);
}

TEST(Verdicts, ListsThatCouldNotBeMade_HaveNoValue) {
    const Verdicts verdicts = ReadVerdicts(R"({"disks": null, "volumes": null, "selected": []})");
    EXPECT_FALSE(verdicts.disks);
    EXPECT_FALSE(verdicts.volumes);
}

TEST(Verdicts, ChecksWithoutCodes_AreRead) {
    const Verdicts verdicts = ReadVerdicts(
        R"({"disks": [{"index": 0, "canBackup": false, "reasons": ["one"]}], "volumes": [], "selected": []})");
    ASSERT_EQ(verdicts.disks->front().verdict.reasons.size(), 1U);
    EXPECT_EQ(verdicts.disks->front().verdict.reasons.front().code, "");
}

TEST(Verdicts, UnknownMembers_AreIgnored) {
    EXPECT_EQ(ErrorOf(R"({"schema": 1, "disks": [], "volumes": [], "selected": []})"), "none");
}

TEST(Verdicts, AnotherSchema_IsRefused) {
    EXPECT_EQ(ErrorOf(R"({"schema": 2})"), "/schema: is 2; this program reads schema 1");
    EXPECT_EQ(ErrorOf(R"({"schema": "1"})"), "/schema: is no number");
}

TEST(Verdicts, NumberThatNoNumberHolds_IsRefusedWithItsPlace) {
    EXPECT_EQ(ErrorOf(R"({"disks": 1e999, "volumes": []})"), "byte 15: a number that is too large ends here");
    EXPECT_EQ(ErrorOf("1e999"), "byte 5: a number that is too large ends here");
}

TEST(Verdicts, TextThatIsNoJson_IsRefusedWithItsPlace) {
    EXPECT_THAT(ErrorOf(R"({"disks": })"), "byte 11: is no JSON");
    EXPECT_THAT(ErrorOf(""), "byte 1: is no JSON");
    EXPECT_THAT(ErrorOf("{\"disks\": \"\xFF\"}"), testing::EndsWith("is no JSON"));
}

TEST(Verdicts, MissingOrOddMember_IsRefusedWithItsPlace) {
    EXPECT_EQ(ErrorOf("[]"), "the whole: has no \"disks\"");
    EXPECT_EQ(ErrorOf(R"({"disks": [], "volumes": []})"), "the whole: has no \"selected\"");
    EXPECT_EQ(ErrorOf(R"({"disks": 1, "volumes": [], "selected": []})"), "/disks: is no list");
    EXPECT_EQ(ErrorOf(R"({"disks": [{"index": -1, "canBackup": true, "reasons": []}]})"),
              "/disks/0/index: is no number");
    EXPECT_EQ(ErrorOf(R"({"disks": [{"index": 4294967296, "canBackup": true, "reasons": []}]})"),
              "/disks/0/index: is too large");
    EXPECT_EQ(ErrorOf(R"({"disks": [{"index": 0, "canBackup": "yes", "reasons": []}]})"),
              "/disks/0/canBackup: is neither true nor false");
    EXPECT_EQ(ErrorOf(R"({"disks": [{"index": 0, "canBackup": false, "reasons": ["", 7]}]})"),
              "/disks/0/reasons/1: is no text");
}

}  // namespace

}  // namespace documents
