#include "tools/orvane/dump_command.h"

#include <gtest/gtest.h>

namespace {

using host::DumpKind;
using host::DumpLines;
using host::LogMessage;

TEST(DumpLines, Text_IsTheInformationLinesAlone) {
    DumpLines lines(DumpKind::kVolumes);
    lines.Take({ORVANE_LEVEL_TRACE, "Entering function VolumeDumpInfo line 1"});
    lines.Take({ORVANE_LEVEL_INFORMATION, "one"});
    lines.Take({ORVANE_LEVEL_INFORMATION, ""});
    lines.Take({ORVANE_LEVEL_WARNING, "warning"});
    lines.Take({ORVANE_LEVEL_ERROR, "error"});
    lines.Take({ORVANE_LEVEL_INFORMATION, "  two"});
    EXPECT_EQ(lines.text(), "one\n\n  two\n");
}

struct SubjectCase {
    DumpKind kind;
    const char* beginning;  // logged even when the dump fails
    const char* subject;
    const char* exception;
};

class DumpLinesSubject : public testing::TestWithParam<SubjectCase> {};

TEST_P(DumpLinesSubject, BeginningAlone_TellsNothing) {
    DumpLines lines(GetParam().kind);
    EXPECT_FALSE(lines.told());
    lines.Take({ORVANE_LEVEL_INFORMATION, GetParam().beginning});
    EXPECT_FALSE(lines.told());
}

TEST_P(DumpLinesSubject, LineOfTheSubject_Tells) {
    DumpLines lines(GetParam().kind);
    lines.Take({ORVANE_LEVEL_INFORMATION, GetParam().beginning});
    lines.Take({ORVANE_LEVEL_INFORMATION, GetParam().subject});
    lines.Take({ORVANE_LEVEL_INFORMATION, "more"});
    EXPECT_TRUE(lines.told());
}

TEST_P(DumpLinesSubject, SameTextAsAnError_TellsNothing) {
    DumpLines lines(GetParam().kind);
    lines.Take({ORVANE_LEVEL_ERROR, GetParam().subject});
    EXPECT_FALSE(lines.told());
}

TEST_P(DumpLinesSubject, DumpThatBreaksOff_HasNotTold) {
    DumpLines lines(GetParam().kind);
    lines.Take({ORVANE_LEVEL_INFORMATION, GetParam().subject});
    lines.Take({ORVANE_LEVEL_ERROR, GetParam().exception});
    EXPECT_FALSE(lines.told());
}

TEST_P(DumpLinesSubject, OtherErrors_AreRemarks) {
    DumpLines lines(GetParam().kind);
    lines.Take({ORVANE_LEVEL_INFORMATION, GetParam().subject});
    lines.Take({ORVANE_LEVEL_ERROR, "GetOSInfo Exception"});
    EXPECT_TRUE(lines.told());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, DumpLinesSubject,
    testing::Values(
        SubjectCase{DumpKind::kWmi, "", "[Processor Information]", "WMIDumpInfo Exception"},
        SubjectCase{DumpKind::kWmi, "", "[Operating System Information]", "WMIDumpInfo Exception"},
        SubjectCase{DumpKind::kDisks, "", "[Device Information]", "DiskDumpInfo Exception"},
        SubjectCase{DumpKind::kVolumes, "============ Preparing volume(s) information ============",
                    "[Volume Information]", "VolumeDumpInfo Exception"},
        SubjectCase{DumpKind::kFirmware, "Capture DLL Version: 9.50.6732", "Firmware type: BIOS",
                    "FirmwareDumpInfo Exception"},
        SubjectCase{DumpKind::kFirmware, "==========Firmware Detection==========", "Firmware type: Unknown",
                    "FirmwareDumpInfo Exception"}));

}  // namespace
