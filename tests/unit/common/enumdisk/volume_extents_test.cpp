// The query of a drive's extents: the growing buffer and the second attempt to open.

#include "common/enumdisk/enum_disk.h"
#include "support/allocation_failure.h"
#include "support/stub.h"
#include "unit/common/enumdisk/enum_machine.h"

#include <cstring>

namespace {

using enum_machine::kMiB;
using support::Error;
using support::Trace;
using support::Warning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr wchar_t kDevice[] = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}";
const std::string kText = "\\\\?\\Volume{00000000-0000-0000-0000-000000000001}";
const std::string kSkipping = "EnumDisk::GetDrives skipping " + kText + "\\";
const std::string kOpening = "OpenVolumeForExtents: Opening the drive " + kText + " failed Error = ";

constexpr char kOneVolume[] = R"({"disks": [{"index": 0, "size": "1000 MiB", "style": "mbr", "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"}]},
        {"index": 1, "size": "1000 MiB", "style": "mbr"}],
    "volumes": [{"guid": "{00000000-0000-0000-0000-000000000001}", "partition": {"disk": 0, "number": 1},
                 "mountPoints": ["C:\\"]}]})";

class VolumeExtents : public enum_machine::EnumMachine {
protected:
    VolumeExtents() { Use(kOneVolume); }

    bool Get() { return EnumDisk().GetDrives(drives_); }

    std::vector<DriveRow> drives_;
};

TEST_F(VolumeExtents, SpannedVolume_KeepsBothNumbersAtMinusOne) {
    volume(0).extents->push_back({1, 5 * kMiB, 10 * kMiB});
    EXPECT_TRUE(Get());
    ASSERT_THAT(drives_, SizeIs(1));
    EXPECT_EQ(drives_[0].disk_number, -1);
    EXPECT_EQ(drives_[0].offset, -1);
    EXPECT_EQ(drives_[0].file_system, L"NTFS");
    EXPECT_THAT(log_.all(), Contains(Trace("GetVolumeExtents: DriveLetter:" + kText +
                                           " diskNum=1 offset:5242880 Size:10485760")));
    EXPECT_THAT(log_.all(), Contains(Trace("GetVolumeExtentsInternal on " + kText + " extents.size() > 1")));
    EXPECT_THAT(log_.all(), Contains(Trace("EnumDisk::GetDrives volume " + kText +
                                           "\\ ignoring error from GetVolumeExtentsFromGUID")));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(VolumeExtents, NoExtents_SkipTheVolume) {
    volume(0).extents->clear();
    EXPECT_TRUE(Get());
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Warning("GetVolumeExtentsInternal on " + kText + " extents.size() == 0"),
                            Warning(kSkipping)));
}

TEST_F(VolumeExtents, Query_FailsOtherwise_SkipsTheVolume) {
    faults().Fail(enum_machine::kExtents, 1);
    EXPECT_TRUE(Get());
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("GetVolumeExtents IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS " +
                                                   kText + " failed error=0x1 1"),
                                             Warning(kSkipping)));
}

TEST_F(VolumeExtents, RefusedForWriting_IsOpenedForReading) {
    struct Opening {
        std::wstring path;
        DWORD access, share, disposition;
        bool operator==(const Opening&) const = default;
    };
    std::vector<Opening> openings;
    const auto open = Kernel32DLL::Get().CreateFileW;
    const support::Stub stub(Kernel32DLL::Get().CreateFileW,
                             [&](LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                 DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
                                 openings.push_back({path, access, share, disposition});
                                 return open(path, access, share, security, disposition, flags, model);
                             });
    faults().Add({"CreateFileW", kDevice, 1, false, {5, 0, 0}, {}});
    EXPECT_TRUE(Get());
    ASSERT_THAT(drives_, SizeIs(1));
    EXPECT_EQ(drives_[0].offset, kMiB);
    EXPECT_TRUE(openings == (std::vector<Opening>{{kDevice, GENERIC_READ | GENERIC_WRITE,
                                                   FILE_SHARE_READ | FILE_SHARE_WRITE, 3},
                                                  {kDevice, GENERIC_READ, FILE_SHARE_READ, 3}}));
    EXPECT_THAT(log_.Messages(), ElementsAre(Warning(kOpening + "5")));
}

TEST_F(VolumeExtents, RefusedTwice_SkipsTheVolume) {
    faults().Add({"CreateFileW", kDevice, 1, false, {5, 0, 0}, {}});
    faults().Add({"CreateFileW", kDevice, 2, false, {32, 0, 0}, {}});
    EXPECT_TRUE(Get());
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Warning(kOpening + "5"), Error(kOpening + "32"), Warning(kSkipping)));
}

// Records the buffer sizes of an extent query that returns error 234 until call number `last`.
class GrowingExtents : public VolumeExtents {
protected:
    BOOL Answer(void* output, DWORD size, DWORD* returned, std::size_t last) {
        sizes_.push_back(size);
        const DWORD count = claimed_;
        std::memcpy(output, &count, sizeof(count));
        if (sizes_.size() < last) {
            *returned = 8;
            SetLastError(ERROR_MORE_DATA);
            return FALSE;
        }
        *returned = 8 + count * static_cast<DWORD>(sizeof(DISK_EXTENT));
        return TRUE;
    }

    void GetUntil(std::size_t last) {
        const support::Stub stub(Kernel32DLL::Get().DeviceIoControl,
                                 [&](HANDLE, DWORD, void*, DWORD, void* output, DWORD size, DWORD* returned,
                                     OVERLAPPED*) -> BOOL { return Answer(output, size, returned, last); });
        EXPECT_TRUE(Get());
    }

    DWORD claimed_ = 0;
    std::vector<DWORD> sizes_;
};

TEST_F(GrowingExtents, Error234_GrowsToSizeTimesCountPlusOnePlusOne) {
    claimed_ = 2;
    GetUntil(3);
    EXPECT_THAT(sizes_, ElementsAre(32U, 97U, 292U));  // 32*(2+1)+1, 97*(2+1)+1
    ASSERT_THAT(drives_, SizeIs(1));
    EXPECT_EQ(drives_[0].disk_number, -1);
}

TEST_F(GrowingExtents, Error234ForEver_SkipsTheVolume) {
    claimed_ = 1;
    GetUntil(SIZE_MAX);
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_LT(sizes_.size(), 40U);
    EXPECT_THAT(log_.all(), Contains(Error("GetVolumeExtents IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS " + kText +
                                           " failed error=0xea 234")));
    EXPECT_THAT(log_.all(), Contains(Warning(kSkipping)));
}

TEST_F(GrowingExtents, AbsurdCount_SkipsTheVolumeWithoutAskingForSuchABuffer) {
    claimed_ = 0xFFFFFFFF;
    GetUntil(SIZE_MAX);
    EXPECT_THAT(sizes_, ElementsAre(32U));
    EXPECT_THAT(drives_, IsEmpty());
}

TEST_F(GrowingExtents, NoMemory_SkipsTheVolume) {
    claimed_ = 100'000;
    const support::AllocationFailure failing(1'000'000);
    GetUntil(SIZE_MAX);
    EXPECT_GT(failing.hits(), 0U);
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.all(), Contains(Warning(kSkipping)));
}

TEST_F(GrowingExtents, CountThatLies_SkipsTheVolume) {
    faults().Alter(enum_machine::kExtents, [](machine::Answer& answer) { answer.bytes[0] = 2; });
    EXPECT_TRUE(Get());
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.all(), Contains(Warning(kSkipping)));
}

}  // namespace
