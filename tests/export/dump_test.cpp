// The dumps apart from their lines: traces, failures, and what they must not change.

#include "export/capture_fixture.h"
#include "support/debugger_capture.h"
#include "support/refused_imports.h"
#include "support/scoped_import.h"

#include <gmock/gmock.h>
#include <objbase.h>

namespace {

using support::Error;
using support::Info;
using support::kHostError;
using support::kHostInformation;
using support::kHostTrace;
using support::LogLine;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Dumps : public CaptureTest {
protected:
    using CaptureTest::CaptureTest;

    using Export = void (*)();

    struct Named {
        const char* name;
        Export dump;
    };

    std::vector<Named> All() const {
        return {{"WMIDumpInfo", library_.WMIDumpInfo},
                {"DiskDumpInfo", library_.DiskDumpInfo},
                {"VolumeDumpInfo", library_.VolumeDumpInfo},
                {"FirmwareDumpInfo", library_.FirmwareDumpInfo}};
    }

    void Run(Export dump) {
        log_.Clear();
        dump();
    }

    std::vector<std::string> Errors() const { return log_.Lines(kHostError); }
    std::vector<std::string> Information() const { return log_.Lines(kHostInformation); }
};

TEST_F(Dumps, EachOne_LeavesFormatAndSelectionAlone) {
    library_.SetXmlFormat(2);
    library_.Select({L"X:"});
    for (const Named& each : All()) {
        Run(each.dump);
    }
    log_.Clear();
    EXPECT_EQ(Capture(0).status, ORVANE_FAILED);
    EXPECT_THAT(log_.all(), Contains(Trace("CaptureSystemRestorePointInfo gSaveXmlFormat=2")));
    EXPECT_THAT(log_.all(),
                Contains(Error("Backup cannot proceed. Failed to find any information about volume X:.")));
}

// --- WMIDumpInfo

struct SectionCase {
    const wchar_t* management_class;
    const char* header;
    const char* failure;
};

constexpr SectionCase kSections[] = {
    {L"Win32_Processor", "[Processor Information]", "WMIDumpInfo Processor Info Failed"},
    {L"Win32_BootConfiguration", "[Boot Configuration Information]",
     "WMIDumpInfo Boot Configuration Info Failed"},
    {L"Win32_ComputerSystem", "[Computer System Information]", "WMIDumpInfo System Info Failed"},
    {L"Win32_OperatingSystem", "[Operating System Information]", "WMIDumpInfo Operating System Info Failed"},
};

TEST_F(Dumps, SectionThatFails_IsOneErrorInItsPlace) {
    for (const SectionCase& failing : kSections) {
        SCOPED_TRACE(failing.header);
        simulation().faults().Fail("IWbemServices::ExecQuery", 0x80041003, failing.management_class);
        Run(library_.WMIDumpInfo);
        std::vector<std::string> blocks;
        for (const LogLine& line : log_.Messages()) {
            if (line.text.starts_with('[') || line.text == failing.failure) {
                blocks.push_back(line.text);
            }
        }
        std::vector<std::string> expected;
        for (const SectionCase& section : kSections) {
            expected.emplace_back(&section == &failing || section.header == failing.header ? section.failure
                                                                                           : section.header);
        }
        EXPECT_EQ(blocks, expected);
        EXPECT_EQ(log_.Count(kHostError, failing.failure), 1U) << log_;
        simulation().faults().Clear();
    }
}

TEST_F(Dumps, WithoutCom_WmiDumpSaysSoAndEnds) {
    const auto refused = support::RefuseCom(library_.module());
    Run(library_.WMIDumpInfo);
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("CoInitializeEx failed error=0x8007000e calling function "
                                                   "WMIDumpInfo"),
                                             Error("WMIDumpInfo: Cannot initialize COM")));
}

int com_calls = 0;

HRESULT WINAPI RefuseSecondCom(void* reserved, DWORD model) {
    return ++com_calls == 2 ? E_OUTOFMEMORY : CoInitializeEx(reserved, model);
}

TEST_F(Dumps, WithoutComForTheSections_WmiDumpSaysSoAndEnds) {
    com_calls = 0;
    const support::ScopedImport import("CoInitializeEx", &RefuseSecondCom, library_.module());
    Run(library_.WMIDumpInfo);
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("CoInitializeEx failed error=0x8007000e calling function GetWMIInfo"),
                            Error("GetWMIInfo: Cannot initialize COM")));
}

// --- DiskDumpInfo

TEST_F(Dumps, DisksThatCannotBeListed_AreNone) {
    simulation().faults().Fail("IWbemServices::ExecQuery", 0x80041003, L"Win32_DiskDrive");
    Run(library_.DiskDumpInfo);
    EXPECT_THAT(Information(), ElementsAre("", "[Device Information]", "Number of Disks: 0"));
    EXPECT_THAT(log_.all(),
                Contains(Error("DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized")));
}

// --- VolumeDumpInfo

TEST_F(Dumps, WithoutCom_VolumeDumpSaysSoAndEnds) {
    const auto refused = support::RefuseCom(library_.module());
    Run(library_.VolumeDumpInfo);
    EXPECT_THAT(Errors(), ElementsAre("CoInitializeEx failed error=0x8007000e calling function "
                                      "VolumeDumpInfo",
                                      "VolumeDumpInfo failed to initialize COM - cannot determine "
                                      "boot/system volume(s)"));
    EXPECT_THAT(Information(), IsEmpty());
}

TEST_F(Dumps, CollectionThatFails_EndsTheVolumeDumpAfterItsFrame) {
    simulation().faults().Fail("FindFirstVolumeW", 5);
    Run(library_.VolumeDumpInfo);
    EXPECT_THAT(Information(), ElementsAre("============ Preparing volume(s) information ============",
                                           "============ Finish preparing volume(s) ============"));
    EXPECT_EQ(Errors().back(), "Failed to obtain environment information");
}

TEST_F(Dumps, VolumeDump_IsTheDiskModelsWhateverTheFormat) {
    Run(library_.VolumeDumpInfo);
    const std::vector<LogLine> expected = log_.Messages();
    for (const std::uint32_t format : {1U, 2U, 7U}) {
        library_.SetXmlFormat(format);
        Run(library_.VolumeDumpInfo);
        EXPECT_EQ(log_.Messages(), expected) << format;
        EXPECT_TRUE(log_.ContainsPart(kHostTrace, "orvane::InfoGrabberV3::DumpVolumeInfo")) << format;
    }
}

class DumpsOfALaptop : public Dumps {
protected:
    DumpsOfALaptop() : Dumps(Machine("bios-laptop")) {}
};

TEST_F(DumpsOfALaptop, VolumesThatCanAllBeBackedUp_EndWithThatSummary) {
    std::erase_if(simulation().description().volumes,
                  [](const machine::Volume& volume) { return volume.drive_type != DRIVE_FIXED; });
    Run(library_.VolumeDumpInfo);
    EXPECT_EQ(Information().back(), "All volumes can be backed up") << log_;
    EXPECT_THAT(Errors(), IsEmpty());
}

// --- FirmwareDumpInfo

struct FirmwareCase {
    std::uint32_t type;
    LogLine line;
};

TEST_F(Dumps, FirmwareTypes_HaveALineEach) {
    const FirmwareCase cases[] = {{0, {kHostInformation, "Firmware type: Unknown\n"}},
                                  {1, {kHostInformation, "Firmware type: BIOS\n"}},
                                  {2, {kHostInformation, "Firmware type: UEFI\n"}},
                                  {3, {kHostError, "Firmware type: Default Unknown\n"}},
                                  {0xFFFFFFFF, {kHostError, "Firmware type: Default Unknown\n"}}};
    for (const FirmwareCase& each : cases) {
        simulation().description().firmware.type = each.type;
        Run(library_.FirmwareDumpInfo);
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Info("Capture DLL Version: 9.50.6732"),
                                Info("==========Firmware Detection==========\n"), each.line));
    }
}

TEST_F(Dumps, FirmwareTypeThatCannotBeAsked_IsNotProbed) {
    simulation().faults().Fail("GetFirmwareType", 5);
    simulation().calls().Clear();
    Run(library_.FirmwareDumpInfo);
    EXPECT_THAT(Errors(), ElementsAre("Firmware type: Unknown - API failed error=0x5\n"));
    EXPECT_EQ(simulation().calls().Count("GetFirmwareEnvironmentVariableW"), 0U);
}

}  // namespace
