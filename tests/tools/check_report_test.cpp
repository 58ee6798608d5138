#include "tools/orvane/check_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using host::CheckReport;
using host::JsonOf;
using host::TableOf;
using testing::HasSubstr;
using testing::Not;

CheckReport SmallReport() {
    CheckReport report;
    report.disks = {{0, "476.94 GB", {true, {}}}, {10, "", {false, {"one", "two"}}}};
    report.volumes = {{"\\\\?\\Volume{a}\\", "\\Device\\V1", {"C:\\", "D:\\Data\\"}, {true, {}}},
                      {"", "\\Device\\V22", {}, {false, {"three"}}}};
    return report;
}

TEST(TableOf, Report_IsAlignedWithReasonsBeneath) {
    EXPECT_EQ(TableOf(SmallReport(), false), R"(Disks
  Backup  Disk  Size
  yes     0     476.94 GB
  no      10
            R000 one
            R000 two

Volumes
  Backup  Volume          Device       Mounted as
  yes     \\?\Volume{a}\  \Device\V1   C:\, D:\Data\
  no                      \Device\V22
            R000 three
)");
}

TEST(TableOf, Selection_HasASectionOfItsOwn) {
    CheckReport report;
    report.disks.emplace();
    report.volumes.emplace();
    report.selected = {{"C:", host::Verdict{true, {}}}, {"X:", host::Verdict{false, {"why"}}}, {"Y:", {}}};
    EXPECT_THAT(TableOf(report, false), testing::EndsWith("\n"
                                                          "Selected\n"
                                                          "  Backup  Volume\n"
                                                          "  yes     C:\n"
                                                          "  no      X:\n"
                                                          "            R000 why\n"
                                                          "  ?       Y:\n"
                                                          "            could not be judged\n"));
}

TEST(TableOf, EmptyMachine_IsSaid) {
    CheckReport report;
    report.disks.emplace();
    report.volumes.emplace();
    EXPECT_EQ(TableOf(report, false), "Disks\n  none found\n\nVolumes\n  none found\n");
}

TEST(TableOf, FailedListing_IsNoEmptyMachine) {
    EXPECT_EQ(TableOf({}, false), "Disks\n  could not be listed\n\nVolumes\n  could not be listed\n");
}

TEST(TableOf, LettersOfSeveralBytes_AreOneColumnEach) {
    CheckReport report;
    report.disks.emplace();
    report.volumes = {{"\xC3\x9C\xE2\x82\xAC", "d", {}, {true, {}}}, {"ab", "e", {}, {true, {}}}};
    EXPECT_THAT(TableOf(report, false), HasSubstr("  yes     \xC3\x9C\xE2\x82\xAC      d\n"
                                                  "  yes     ab      e\n"));
}

TEST(TableOf, Colour_IsOnTheAnswersAlone) {
    const std::string plain = TableOf(SmallReport(), false);
    EXPECT_THAT(plain, Not(HasSubstr("\x1b")));
    const std::string coloured = TableOf(SmallReport(), true);
    EXPECT_THAT(coloured, HasSubstr("  \x1b[32myes\x1b[0m     0     476.94 GB\n"));
    EXPECT_THAT(coloured, HasSubstr("  \x1b[31mno\x1b[0m      10\n"));
    EXPECT_THAT(coloured, HasSubstr("  Backup  Disk  Size\n"));
    // Four coloured answers: two for disks, two for volumes.
    EXPECT_EQ(coloured.size(),
              plain.size() + 4 * (std::string("\x1b[32m").size() + std::string("\x1b[0m").size()));
}

TEST(JsonOf, Report_HasEveryMember) {
    CheckReport report = SmallReport();
    report.selected = {{"C:", host::Verdict{true, {}}}, {"X:", host::Verdict{false, {"why"}}}};
    EXPECT_EQ(nlohmann::json::parse(JsonOf(report)), nlohmann::json::parse(R"({
        "schema": 1, "disks": [{"index": 0, "canBackup": true, "reasons": [], "codes": []},
                  {"index": 10, "canBackup": false, "reasons": ["one", "two"], "codes": ["R000", "R000"]}],
        "volumes": [{"id": "\\\\?\\Volume{a}\\", "device": "\\Device\\V1", "mountPoints": ["C:\\", "D:\\Data\\"],
                     "canBackup": true, "reasons": [], "codes": []},
                    {"id": "", "device": "\\Device\\V22", "mountPoints": [],
                     "canBackup": false, "reasons": ["three"], "codes": ["R000"]}],
        "selected": [{"volume": "C:", "canBackup": true, "reasons": [], "codes": []},
                     {"volume": "X:", "canBackup": false, "reasons": ["why"], "codes": ["R000"]}]})"));
}

TEST(JsonOf, EmptyMachine_IsEmptyLists) {
    CheckReport report;
    report.disks.emplace();
    report.volumes.emplace();
    EXPECT_EQ(JsonOf(report),
              "{\n  \"schema\": 1,\n  \"disks\": [],\n  \"volumes\": [],\n  \"selected\": []\n}\n");
}

TEST(JsonOf, WhatIsUnknown_IsNull) {
    CheckReport report;
    report.selected = {{"C:", {}}};
    EXPECT_EQ(nlohmann::json::parse(JsonOf(report)), nlohmann::json::parse(R"({
        "schema": 1, "disks": null, "volumes": null,
        "selected": [{"volume": "C:", "canBackup": null, "reasons": [], "codes": []}]})"));
}

TEST(JsonOf, Texts_StayUtf8) {
    CheckReport report;
    report.selected = {{"\xC3\x9C", host::Verdict{true, {}}}};
    EXPECT_THAT(JsonOf(report), HasSubstr("\"\xC3\x9C\""));
}

}  // namespace
