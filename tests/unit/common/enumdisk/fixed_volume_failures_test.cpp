// Makes each query of a fixed volume fail. The volume is left out, or a fallback is used.

#include "common/platform/system_library.h"
#include "support/allocation_failure.h"
#include "support/dos_device_answers.h"
#include "support/stub.h"
#include "unit/common/enumdisk/fixed_machine.h"

namespace {

using support::Error;
using support::LogLine;
using support::Warning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr wchar_t kOpenedFirst[] = L"\\\\.\\C:";
constexpr char kLeftOut[] =
    "getFixedVolumes skipping volume \\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\ C: due to errors";

class FixedVolumeFailures : public fixed_machine::FixedMachine {
protected:
    // Expects that the first volume is left out after this log line, and the second one is listed.
    void ExpectLeftOut(const std::string& line, support::HostLevel level = support::kHostWarning) {
        EXPECT_TRUE(Get());
        EXPECT_THAT(Names(), ElementsAre(fixed_machine::kSecond));
        EXPECT_THAT(log_.Messages(), ElementsAre(LogLine{level, line}, Warning(kLeftOut)));
    }

    void ExpectWarning(const std::string& line) { EXPECT_THAT(log_.all(), Contains(Warning(line))); }

    // Expects that both volumes are listed, the first one without a letter after the failure of its mount
    // paths.
    void ExpectNoLetter(const std::string& error) {
        EXPECT_TRUE(Get());
        ASSERT_THAT(volumes_, SizeIs(2));
        EXPECT_EQ(volumes_[0].VolumeLetter, L"");
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Warning("getVolumeInfo for " + FirstName() +
                                        " GetVolumePathNamesForVolumeName failed error=" + error)));
    }

    static std::string Info(const std::string& rest) {
        return "getVolumeInfo for " + FirstName() + " C: " + rest;
    }
};

TEST_F(FixedVolumeFailures, DeviceName_LeavesTheVolumeOut) {
    faults().Fail("QueryDosDeviceW", 2, L"Volume{00000000-0000-0000-0000-000000000001}");
    ExpectLeftOut("getDeviceName of " + FirstName() + " error=0x2 2", support::kHostError);
}

TEST_F(FixedVolumeFailures, DeviceNameTooLongAtFirst_IsAskedAgain) {
    volume(0).device = L"\\Device\\" + std::wstring(300, L'x');
    ASSERT_TRUE(Get());
    ASSERT_THAT(volumes_, SizeIs(2));
    EXPECT_EQ(volumes_[0].DeviceName, L"\\Device\\" + std::wstring(300, L'x'));
}

struct FailingQuery {
    const char* call;
    DWORD error;
    const wchar_t* object;
    const char* line;  // behind the volume
};

class FailingFixedVolume : public FixedVolumeFailures, public testing::WithParamInterface<FailingQuery> {};

TEST_P(FailingFixedVolume, Query_LeavesTheVolumeOut) {
    faults().Fail(GetParam().call, GetParam().error, GetParam().object);
    ExpectLeftOut(Info(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Queries, FailingFixedVolume,
    testing::Values(FailingQuery{"GetVolumeInformationW", 1005, fixed_machine::kFirst,
                                 "GetVolumeInformation failed error=0x3ed 1005"},
                    FailingQuery{"CreateFileW", 5, kOpenedFirst, "CreateFile failed error=0x5 5"},
                    FailingQuery{enum_machine::kExtents, 1, kOpenedFirst,
                                 "DeviceIoControl IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS failed error=0x1 1"},
                    FailingQuery{
                        enum_machine::kExtents, ERROR_MORE_DATA, kOpenedFirst,
                        "DeviceIoControl IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS failed error=0xea 234"},
                    FailingQuery{enum_machine::kPartition, 1, kOpenedFirst,
                                 "DeviceIoControl IOCTL_DISK_GET_PARTITION_INFO failed error=0x1 1"},
                    FailingQuery{"GetDiskFreeSpaceExW", 21, fixed_machine::kFirst,
                                 "GetDiskFreeSpaceEx failed error=0x15 21"}));

TEST_F(FixedVolumeFailures, NoExtents_LeaveTheVolumeOut) {
    volume(0).extents->clear();
    EXPECT_TRUE(Get());
    EXPECT_THAT(Names(), ElementsAre(fixed_machine::kSecond));
    ExpectWarning(kLeftOut);
}

TEST_F(FixedVolumeFailures, ExtentsThatCountMoreThanTheyHold_LeaveTheVolumeOut) {
    faults().Alter(
        enum_machine::kExtents, [](machine::Answer& answer) { answer.bytes[0] = 200; }, kOpenedFirst);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Names(), ElementsAre(fixed_machine::kSecond));
    ExpectWarning(kLeftOut);
}

TEST_F(FixedVolumeFailures, NoMemoryForTheExtents_LeavesTheVolumeOut) {
    faults().Fail(enum_machine::kExtents, ERROR_MORE_DATA, kOpenedFirst);
    const support::AllocationFailure failing(1'000'000);
    ExpectLeftOut(Info("DeviceIoControl IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS failed error=0xe 14"));
    EXPECT_GT(failing.hits(), 0U);
}

TEST_F(FixedVolumeFailures, StyleOfTheDisk_IsOnlyATrace) {
    faults().Fail(enum_machine::kLayoutEx, 21);
    EXPECT_TRUE(Get());
    EXPECT_THAT(volumes_, SizeIs(2));
}

TEST_F(FixedVolumeFailures, PartitionInformationTooShort_LeavesTheVolumeOut) {
    faults().Alter(
        enum_machine::kPartition, [](machine::Answer& answer) { answer.returned = 8; }, kOpenedFirst);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Names(), ElementsAre(fixed_machine::kSecond));
}

TEST_F(FixedVolumeFailures, BlockSize_StaysZero) {
    faults().Fail("GetDiskFreeSpaceW", 21, fixed_machine::kFirst);
    EXPECT_TRUE(Get());
    ASSERT_THAT(volumes_, SizeIs(2));
    EXPECT_EQ(volumes_[0].BlockSize, 0U);
}

TEST_F(FixedVolumeFailures, Length_IsThatOfThePartition) {
    volume(0).length = 12345;
    volume(0).partition->length = 54321;
    faults().Fail(enum_machine::kLength, 87, kOpenedFirst);
    EXPECT_TRUE(Get());
    ASSERT_THAT(volumes_, SizeIs(2));
    EXPECT_EQ(volumes_[0].m_Size, 54321U);
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Warning("getVolumeInfo " + FirstName() +
                            " C: DeviceIoControl IOCTL_DISK_GET_LENGTH_INFO failed error=0x57 87 (will "
                            "use partition length)")));
}

TEST_F(FixedVolumeFailures, LengthThatIsToldByTheVolume_GoesBeforeThePartitions) {
    volume(0).length = 12345;
    volume(0).partition->length = 54321;
    EXPECT_TRUE(Get());
    ASSERT_THAT(volumes_, SizeIs(2));
    EXPECT_EQ(volumes_[0].m_Size, 12345U);
}

TEST_F(FixedVolumeFailures, MoreFreeThanThereIs_IsNothingUsed) {
    volume(0).total_bytes = 10;
    volume(0).free_bytes = 20;
    EXPECT_TRUE(Get());
    ASSERT_THAT(volumes_, SizeIs(2));
    EXPECT_EQ(volumes_[0].m_FileSystemUsedSpace, 0U);
}

TEST_F(FixedVolumeFailures, MountPaths_LeaveTheLetterEmpty) {
    faults().Fail("GetVolumePathNamesForVolumeNameW", 87, fixed_machine::kFirst);
    ExpectNoLetter("0x57 87");
}

// The system reports more characters than the buffer holds.
TEST_F(FixedVolumeFailures, MountPathsBeyondTheBuffer_LeaveTheLetterEmpty) {
    faults().Alter(
        "GetVolumePathNamesForVolumeNameW", [](machine::Answer& answer) { answer.returned = 1000; },
        fixed_machine::kFirst);
    ExpectNoLetter("0xd 13");
}

TEST_F(FixedVolumeFailures, DeviceNameBeyondTheBuffer_LeavesTheVolumeOut) {
    faults().Alter(
        "QueryDosDeviceW", [](machine::Answer& answer) { answer.value = 1000; },
        L"Volume{00000000-0000-0000-0000-000000000001}");
    ExpectLeftOut("getDeviceName of " + FirstName() + " error=0xd 13", support::kHostError);
    EXPECT_EQ(faults().hits(), 1U);
}

TEST_F(FixedVolumeFailures, DeviceNameWithoutATarget_LeavesTheVolumeOut) {
    support::AnswerNoTarget(faults(), L"Volume{00000000-0000-0000-0000-000000000001}");
    ExpectLeftOut("getDeviceName of " + FirstName() + " error=0xd 13", support::kHostError);
    EXPECT_EQ(faults().hits(), 1U);
}

TEST_F(FixedVolumeFailures, EveryVolume_LeavesAnEmptyListAndSuccess) {
    faults().Fail("GetVolumeInformationW", 1005);
    EXPECT_TRUE(Get());
    EXPECT_THAT(volumes_, IsEmpty());
}

// Volume names that a system should not return.
class MalformedVolumeName : public FixedVolumeFailures, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(MalformedVolumeName, DeviceName_IsABadPathname) {
    const std::wstring name = GetParam();
    const auto fill = [&name](wchar_t* buffer) { std::copy_n(name.c_str(), name.size() + 1, buffer); };
    const support::Stub first(Kernel32DLL::Get().FindFirstVolumeW, [&](wchar_t* buffer, DWORD) -> HANDLE {
        fill(buffer);
        return reinterpret_cast<HANDLE>(1);
    });
    const support::Stub next(Kernel32DLL::Get().FindNextVolumeW, [](HANDLE, wchar_t*, DWORD) -> BOOL {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    });
    const support::Stub close(Kernel32DLL::Get().FindVolumeClose, [](HANDLE) -> BOOL { return TRUE; });
    const support::Stub type(Kernel32DLL::Get().GetDriveTypeW,
                             [](const wchar_t*) -> UINT { return DRIVE_FIXED; });
    EXPECT_TRUE(Get());
    EXPECT_THAT(volumes_, IsEmpty());
    EXPECT_THAT(log_.all(), Contains(Error("getDeviceName of " + std::string(name.begin(), name.end()) +
                                           " error ERROR_BAD_PATHNAME")));
}

INSTANTIATE_TEST_SUITE_P(Names, MalformedVolumeName,
                         testing::Values(L"", L"Volume", L"\\\\?\\", L"\\\\?\\Volume", L"\\\\.\\Volume\\",
                                         L"C:\\"));

}  // namespace
