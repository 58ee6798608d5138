// Dumps without a log callback. Errors and warnings go to the debugger output; the text of a dump is logged
// as information, which does not.

#include "export/capture_fixture.h"
#include "support/debugger_capture.h"
#include "support/scoped_import.h"
#include "support/text.h"

#include <gmock/gmock.h>
#include <objbase.h>

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

TEST_F(DumpsWithoutCallback, DiskDump_NothingFails_IsSilent) {
    EXPECT_THAT(Seen(library_.DiskDumpInfo), IsEmpty());
    EXPECT_GT(simulation().calls().Count("DeviceIoControl"), 0U);
}

TEST_F(DumpsWithoutCallback, DiskDump_DiskThatCannotBeOpened_IsOneLine) {
    simulation().faults().Fail("CreateFileW", 5, L"\\\\.\\PhysicalDrive1");

    EXPECT_THAT(Seen(library_.DiskDumpInfo),
                ElementsAre("operation Opening Disk failed - Failed to open hard disk 1 error: 5\n"));
}

TEST_F(DumpsWithoutCallback, DiskDump_DisksThatCannotBeListed_AreTheFailuresAlone) {
    simulation().faults().Fail("IWbemServices::ExecQuery", 0x80041003, L"Win32_DiskDrive");

    EXPECT_THAT(Seen(library_.DiskDumpInfo),
                ElementsAre("CWmi::CWmi ExecQuery failed error 0x80041003\n",
                            "DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized\n"));
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

TEST_F(DumpsWithoutCallback, VolumeDump_CollectionThatFails_IsItsErrors) {
    simulation().faults().Fail("FindFirstVolumeW", 5);

    EXPECT_THAT(Seen(library_.VolumeDumpInfo),
                ElementsAre("bmr_common::VolumeManager::InitializeWithCurrentVolumes failed to "
                            "FindFirstVolume error=5\n",
                            "Failed to obtain environment information\n"));
}

HRESULT WINAPI RefuseCom(void*, DWORD) {
    return E_OUTOFMEMORY;
}

TEST_F(DumpsWithoutCallback, VolumeDump_NoCom_SaysSo) {
    const support::ScopedImport import("CoInitializeEx", &RefuseCom, library_.module());

    EXPECT_THAT(Seen(library_.VolumeDumpInfo),
                ElementsAre("CoInitializeEx failed error=0x8007000e calling function VolumeDumpInfo\n",
                            "VolumeDumpInfo failed to initialize COM - cannot determine boot/system "
                            "volume(s)\n"));
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

TEST_F(LaptopWithoutCallback, WmiDump_NothingFails_IsSilent) {
    EXPECT_THAT(Seen(library_.WMIDumpInfo), IsEmpty());
    EXPECT_EQ(simulation().calls().Count("IWbemServices::ExecQuery"), 4U);
}

}  // namespace
