#include "documents/report/report.h"

#include "tests/documents/report/made_machines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace documents {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string PageOf(const Machine& machine, const Verdicts* verdicts = nullptr) {
    return ReportPage({machine, "machine.xml", {}, verdicts});
}

Machine OneDisk() {
    Machine machine;
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kMbr);
    disk.partitions = {MbrPartition({kMiB, 10 * kGiB - kMiB}, 7)};
    machine.disks = {disk};
    machine.volumes = {MadeVolume("C:\\", {MadeExtent(0, {kMiB, 10 * kGiB - kMiB})})};
    return machine;
}

TEST(Report, TextsOfTheDocument_AreEscaped) {
    Machine machine = OneDisk();
    const std::string text = R"(<script>alert("1")</script>&'{{style}})";
    const std::string escaped = "&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt;&amp;&apos;{{style}}";
    machine.volumes.front().label = text;
    machine.facts = {{"OS", "CSName", text}};
    const std::string page = ReportPage({machine, text, {{"D001", Severity::kError, text, text}}, nullptr});
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    for (const char* const before : {"<title>", "<h1>", "document ", "<span class=\"label\">"}) {
        EXPECT_THAT(page, HasSubstr(before + escaped));
    }
}

TEST(Report, DirectionControls_AreShown) {
    Machine machine = OneDisk();
    machine.volumes.front().label = "fdp\u202Eexe";
    EXPECT_THAT(PageOf(machine), AllOf(HasSubstr("fdp\\u202Eexe"), Not(HasSubstr("\u202E"))));
}

TEST(Report, SameInput_GivesTheSameBytes) {
    EXPECT_EQ(PageOf(OneDisk()), PageOf(OneDisk()));
}

TEST(Report, EmptyMachine_SaysSo) {
    EXPECT_THAT(PageOf(Machine()),
                AllOf(HasSubstr("A machine without a name"), HasSubstr("The document has no disk."),
                      HasSubstr("The document has no volume."), HasSubstr("found nothing wrong")));
}

TEST(Report, DiskThatCouldNotBeRead_HasNoMap) {
    Machine machine;
    machine.disks.emplace_back();
    EXPECT_THAT(PageOf(machine), AllOf(HasSubstr("of unknown size"), HasSubstr("could not be read"),
                                       Not(HasSubstr("<svg class=\"map"))));
}

TEST(Report, MorePartsThanAMapHolds_AreInTheTableAlone) {
    // 680 pixels hold 226 parts of 3 pixels, 320 hold 106.
    const auto page_with = [](std::uint64_t count) {
        Machine machine;
        Disk disk = MadeDisk(0, count * kGiB, Style::kMbr);
        for (std::uint64_t index = 0; index < count; ++index) {
            disk.partitions->push_back(MbrPartition({index * kGiB, kGiB}, 7));
        }
        machine.disks = {disk};
        return PageOf(machine);
    };
    const std::string wide = "<svg class=\"map wide\"";
    const std::string narrow = "<svg class=\"map narrow\"";
    EXPECT_THAT(page_with(106), AllOf(HasSubstr(wide), HasSubstr(narrow)));
    EXPECT_THAT(page_with(107), AllOf(HasSubstr(wide), Not(HasSubstr(narrow))));
    EXPECT_THAT(page_with(227),
                AllOf(Not(HasSubstr(wide)), Not(HasSubstr(narrow)), HasSubstr("Partition 227")));
}

TEST(Report, Verdicts_StandAtTheirVolumes) {
    Machine machine = OneDisk();
    machine.volumes.front().path = R"(\\?\Volume{1}\)";
    Verdicts verdicts;
    verdicts.volumes = {{R"(\\?\Volume{1}\)", "", {}, {false, {{"R009", "It is too small"}}}}};
    EXPECT_THAT(PageOf(machine, &verdicts),
                AllOf(HasSubstr("0 of 1 volume can be backed up"), HasSubstr("R009: It is too small"),
                      HasSubstr("<td colspan=\"3\"><span class=\"verdict bad\">cannot be backed up")));
    EXPECT_THAT(PageOf(machine), Not(HasSubstr("Backup check")));
}

}  // namespace

}  // namespace documents
