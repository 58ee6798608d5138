// Format 2: each step of the collection and its failures; backup check and dump.

#include "support/stub.h"
#include "unit/capture/grabber/workstation_v2.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr wchar_t kSystemVolume[] = L"\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a03}\\";
constexpr wchar_t kDataVolume[] = L"\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\";
constexpr wchar_t kOpticalDrive[] = L"\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-806e6f6e6963}\\";

// --- The steps before the conversion.

TEST_F(InfoGrabberV2Test, NewGrabber_HasAnEmptyRecord) {
    EXPECT_EQ(record().Version, 0U);
    EXPECT_EQ(record().DllVersion, L"");
}

TEST_F(InfoGrabberV2Test, ObtainInformation_ClearsTheBootIniContents) {
    grabber_.GetEnvInfo()->BootIniContents = L"[boot loader]";
    EXPECT_TRUE(grabber_.ObtainInformation()) << log_;
    EXPECT_EQ(record().BootIniContents, L"");
}

TEST_F(InfoGrabberV2Test, ObtainInformation_IsTracedWithEitherResult) {
    for (const bool succeeds : {true, false}) {
        if (!succeeds) {
            simulation().faults().Fail("FindFirstVolumeW", 5);
        }
        log_.Clear();
        EXPECT_EQ(orvane::InfoGrabberV2().ObtainInformation(), succeeds);
        const std::vector<std::string> trace = log_.Lines(support::kHostTrace);
        EXPECT_THAT(trace.front(),
                    StartsWith("Entering function orvane::InfoGrabberV2::ObtainInformation line "));
        EXPECT_THAT(trace.back(),
                    StartsWith("Leaving function orvane::InfoGrabberV2::ObtainInformation line "));
    }
}

TEST_F(InfoGrabberV2Test, Operations_AreTracedEach) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    const std::vector<std::string> trace = log_.Lines(support::kHostTrace);
    for (const char* name :
         {"ConvertObtainedInformation", "SetVolumeInfoGUID", "AddVolumeInfo", "AddDiskInformation",
          "AddExistingDiskInformation", "AddVolumeInformationToPartitions",
          "SetPartitionVolumeLetterFileSystem", "SetVolumePartitionNumbers", "SetBasicVolumesPartitionNumber",
          "SetBasicVolumePartitionNumber"}) {
        const std::string function = std::string("function orvane::InfoGrabberV2::") + name + " line ";
        EXPECT_THAT(trace, Contains(StartsWith("Entering " + function)));
        EXPECT_THAT(trace, Contains(StartsWith("Leaving " + function)));
    }
}

TEST_F(InfoGrabberV2Test, ComThatCannotBeInitialised_FailsTheCollection) {
    const support::StubImport import("CoInitializeEx", &::CoInitializeEx,
                                     [](void*, DWORD) -> HRESULT { return E_OUTOFMEMORY; });
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("CoInitializeEx failed error=0x8007000e calling function GetWMIInfo",
                            "GetWMIInfo: Cannot initialize COM"));
    EXPECT_EQ(record().Version, 5U);
    EXPECT_EQ(record().DllVersion, L"9.50.6732.");
}

TEST_F(InfoGrabberV2Test, SectionThatFails_FailsAfterAllFourWereTried) {
    Instances(L"Win32_Processor").clear();
    EXPECT_FALSE(grabber_.ObtainInformation());
    std::vector<std::wstring> queried;
    for (const machine::CallRecord& record : simulation().calls().records()) {
        if (record.name == "IWbemServices::ExecQuery") {
            queried.push_back(record.object);
        }
    }
    EXPECT_THAT(queried, ElementsAre(L"Win32_Processor", L"Win32_OperatingSystem", L"Win32_ComputerSystem",
                                     L"Win32_BootConfiguration"));
    EXPECT_EQ(simulation().calls().Count("CreateFileW"), 0U);
}

TEST_F(InfoGrabberV2Test, DisksThatCannotBeListed_FailBeforeTheVolumes) {
    Instances(L"Win32_DiskDrive").clear();
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_EQ(simulation().calls().Count("FindFirstVolumeW"), 0U);
}

TEST_F(InfoGrabberV2Test, VolumesThatCannotBeListed_FailBeforeTheConversion) {
    simulation().faults().Fail("FindFirstVolumeW", 5);
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_FALSE(log_.ContainsPart(support::kHostTrace, "ConvertObtainedInformation")) << log_;
}

TEST_F(InfoGrabberV2Test, GuidThatCannotBeMade_FailsTheConversion) {
    const support::StubImport import("CoCreateGuid", &::CoCreateGuid,
                                     [](GUID*) -> HRESULT { return static_cast<HRESULT>(0x80070005); });
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_EQ(log_.Lines(support::kHostError).back(), "CoCreateGuid call failed error: 2147942405");
    EXPECT_THAT(record().VolumeTable, IsEmpty());
}

TEST_F(InfoGrabberV2Test, BootOptionsThatAreMissing_FailLast) {
    machine::Description machine = ExampleMachine("uefi-workstation");
    machine.registry.clear();
    Describe(std::move(machine));
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError), ElementsAre("GetBootOptions Failed to open registry"));
    EXPECT_EQ(record().DiskDrives.size(), 2U);
}

TEST_F(InfoGrabberV2Test, BootOptionsValueThatIsAbsent_FailsLastWithTheBootSectionFilled) {
    machine::Description machine = ExampleMachine("uefi-workstation");
    machine.registry.at(0).values.clear();
    Describe(std::move(machine));
    log_.Clear();

    EXPECT_FALSE(grabber_.ObtainInformation());

    EXPECT_THAT(log_.Messages(),
                ElementsAre(support::LogLine{support::kHostError,
                                             "GetBootOptions failed to find SystemStartOptions error=259"}));
    EXPECT_EQ(record().DiskDrives.size(), 2U);
    EXPECT_EQ(record().DriveLetterTable.size(), record().VolumeTable.size());
    EXPECT_EQ(record().BootConfig.m_guidSystemVolume, VolumeOn(record(), record().OS.SystemDevice).m_GUID);
    EXPECT_EQ(record().BootConfig.m_guidBootVolume, VolumeOn(record(), record().OS.BootDevice).m_GUID);
    EXPECT_EQ(record().BootConfig.m_strBootOptions, L"");
}

// --- Machines without disks, and with an impossible disk number.

TEST_F(InfoGrabberV2Test, DiskNumberThatIsAbsurd_StaysADiskWithoutARow) {
    machine::WmiInstance drive = Instances(L"Win32_DiskDrive").at(0);
    machine::WmiValue index;
    index.type = VT_I4;  // so WMI passes its unsigned numbers
    index.number = -1;
    machine::SetProperty(drive, {L"Index", index});
    Instances(L"Win32_DiskDrive").push_back(drive);

    EXPECT_TRUE(grabber_.ObtainInformation()) << log_;

    EXPECT_TRUE(log_.Contains(support::kHostWarning,
                              "DeviceManager::GetMaxPhysicalDiskId disk number 4294967295 is too large - "
                              "ignoring"))
        << log_;
    EXPECT_EQ(record().DiskDrives.size(), 2U);
    EXPECT_EQ(simulation().calls().Count("CreateFileW", L"\\\\.\\PhysicalDrive4294967295"), 1U);
}

TEST_F(InfoGrabberV2Test, NoDisks_CannotBeCaptured) {
    Describe(ExampleMachine("no-disks"));
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_GT(log_.Count(support::kHostError), 0U);
    EXPECT_EQ(simulation().open_handles(), 0U);
}

TEST_F(InfoGrabberV2Test, OnlyADriveWithoutNumber_HasNoMaximum) {
    machine::WmiValue index;
    index.type = VT_I4;
    index.number = 255;
    Instances(L"Win32_DiskDrive").resize(1);
    machine::SetProperty(Instances(L"Win32_DiskDrive").at(0), {L"Index", index});
    description().volumes.clear();
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError),
                Contains("DeviceManager::GetMaxPhysicalDiskId no devices so no maximum id"));
}

// --- Checking and dumping.

TEST_F(InfoGrabberV2Test, CanBackup_ChecksAgainstItsOwnModel) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    EXPECT_TRUE(grabber_.CanBackup({}, {}, false));
    EXPECT_TRUE(grabber_.CanBackup({kSystemVolume, kDataVolume}, {{0, MiB(1)}}, false)) << log_;
    EXPECT_FALSE(grabber_.CanBackup({kSystemVolume}, {{7, 0}}, false));
    EXPECT_FALSE(grabber_.CanBackup({}, {}, true));  // all volumes include the empty optical drive
}

TEST_F(InfoGrabberV2Test, SelectedVolumeThatIsMissing_IsRefused) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    log_.Clear();
    EXPECT_FALSE(grabber_.CanBackup({L"{99999999-0000-0000-0000-000000000000}"}, {}, false));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("Backup cannot proceed. Failed to find any information about volume "
                            "{99999999-0000-0000-0000-000000000000}."));
}

TEST_F(InfoGrabberV2Test, SelectedVolumeThatIsNotFixed_IsRefusedWithItsMountPoint) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    log_.Clear();
    EXPECT_FALSE(grabber_.CanBackup({kOpticalDrive}, {}, false));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("Volume \\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-806e6f6e6963}\\ (Mounted as: E:\\) "
                            "cannot be backed up because:",
                            "This not a fixed disk, type is 5"));
}

TEST_F(InfoGrabberV2Test, SelectedVolumeThatIsSpanned_MayBeBackedUp) {
    Describe(ExampleMachine("spanned-dynamic"));
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    log_.Clear();
    EXPECT_TRUE(grabber_.CanBackup({L"\\\\?\\Volume{d7a0c413-6e2f-11e9-9a85-00155d01c203}\\"}, {}, false));
    EXPECT_EQ(log_.Count(support::kHostError), 0U) << log_;
}

TEST_F(InfoGrabberV2Test, DumpVolumeInfo_IsTheManagersDumpBetweenTraceLines) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    log_.Clear();
    grabber_.DumpVolumeInfo();
    const std::vector<std::string> trace = log_.Lines(support::kHostTrace);
    EXPECT_THAT(trace.front(), StartsWith("Entering function orvane::InfoGrabberV2::DumpVolumeInfo line "));
    EXPECT_THAT(trace.back(), StartsWith("Leaving function orvane::InfoGrabberV2::DumpVolumeInfo line "));
    EXPECT_TRUE(log_.Contains(support::kHostInformation, "[Volume Information]")) << log_;
    EXPECT_TRUE(log_.Contains(support::kHostInformation, "Number of volumes: 7")) << log_;
}

}  // namespace
