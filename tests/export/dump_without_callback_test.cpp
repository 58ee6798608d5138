// Dumps without a log callback. Errors and warnings go to the debugger output; the text of a dump is logged
// as information, which does not.

#include "export/capture_fixture.h"
#include "support/debugger_capture.h"
#include "support/text.h"

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DumpsWithoutCallback : public CaptureTest {
protected:
    using CaptureTest::CaptureTest;

    // The lines that a dump writes to the debugger output, without their time stamps. A line without a stamp
    // gets the prefix "(no stamp)".
    std::vector<std::string> Seen(void (*dump)()) {
        static const std::regex stamped(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d [AP]M ([^]*))");
        library_.SetEventFunc(nullptr);
        const support::DebuggerCapture debugger(library_.module());
        dump();
        std::vector<std::string> seen;
        for (const std::wstring& line : debugger.lines()) {
            const std::string text = support::Utf8(line);
            std::smatch match;
            seen.push_back(std::regex_match(text, match, stamped) ? match[1].str() : "(no stamp)" + text);
        }
        return seen;
    }
};

TEST_F(DumpsWithoutCallback, DiskDump_DiskThatCannotBeOpened_IsOneLine) {
    simulation().faults().Fail("CreateFileW", 5, L"\\\\.\\PhysicalDrive1");

    EXPECT_THAT(Seen(library_.DiskDumpInfo),
                ElementsAre("operation Opening Disk failed - Failed to open hard disk 1 error: 5\n"));
}

TEST_F(DumpsWithoutCallback, WmiDump_NothingFails_IsSilent) {
    EXPECT_THAT(Seen(library_.WMIDumpInfo), IsEmpty());
    EXPECT_GT(simulation().calls().Count("IWbemServices::ExecQuery"), 0U);
}

TEST_F(DumpsWithoutCallback, VolumeDump_RefusedVolumes_AreTheirReasons) {
    std::erase_if(simulation().description().volumes, [](const machine::Volume& volume) {
        return volume.drive_type != DRIVE_FIXED || volume.mount_points != std::vector<std::wstring>{L"C:\\"};
    });
    ASSERT_EQ(simulation().description().volumes.size(), 1U);
    machine::Volume& volume = simulation().description().volumes.front();
    volume.guid = L"{00000000-0000-0000-0000-000000000001}";
    volume.drive_type = DRIVE_CDROM;

    EXPECT_THAT(Seen(library_.VolumeDumpInfo),
                ElementsAre("Volume \\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\ (Mounted as: C:\\) "
                            "cannot be backed up because:\n",
                            "This not a fixed disk, type is 5\n"));
}

// These messages already end in a line feed; no second one is added.
TEST_F(DumpsWithoutCallback, FirmwareDump_Failures_EndWithOneLineFeed) {
    EXPECT_THAT(Seen(library_.FirmwareDumpInfo), IsEmpty());

    simulation().description().firmware.type = 3;
    EXPECT_THAT(Seen(library_.FirmwareDumpInfo), ElementsAre("Firmware type: Default Unknown\n"));

    simulation().faults().Fail("GetFirmwareType", 5);
    EXPECT_THAT(Seen(library_.FirmwareDumpInfo),
                ElementsAre("Firmware type: Unknown - API failed error=0x5\n"));
}

class LaptopWithoutCallback : public DumpsWithoutCallback {
protected:
    LaptopWithoutCallback() : DumpsWithoutCallback(Machine("bios-laptop")) {}
};

TEST_F(LaptopWithoutCallback, VolumeDump_AllVolumesCanBeBackedUp_IsSilent) {
    std::erase_if(simulation().description().volumes,
                  [](const machine::Volume& volume) { return volume.drive_type != DRIVE_FIXED; });

    EXPECT_THAT(Seen(library_.VolumeDumpInfo), IsEmpty());
    EXPECT_GT(simulation().calls().Count("GetDriveTypeW"), 0U);
}

}  // namespace
