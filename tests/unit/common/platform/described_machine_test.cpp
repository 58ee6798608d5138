// The wrappers on a described machine: bound function tables, results as on Windows, and no leaked handles.

#include "common/platform/nt_api_wrapper.h"
#include "common/platform/win_api_wrapper.h"
#include "machine/simulation/simulation.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using machine::Simulation;
using support::LoggerCapture;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::SizeIs;
using win::NtAPIWrapper;
using win::WinAPIWrapper;

constexpr char kMachine[] = R"({
    "disks": [{"index": 0, "size": 1073741824, "style": "mbr", "signature": 305419896,
               "partitions": [{"offset": 1048576, "size": 536870912, "type": "ntfs", "active": true}]}],
    "volumes": [{"guid": "{11111111-2222-3333-4444-555555555555}", "device": "\\Device\\HarddiskVolume1",
                 "partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"], "label": "System",
                 "serial": 3405691582, "free": 104857600}]
})";

constexpr wchar_t kVolume[] = L"\\\\?\\Volume{11111111-2222-3333-4444-555555555555}\\";

class DescribedMachine : public testing::Test {
protected:
    ~DescribedMachine() override {
        EXPECT_EQ(simulation_.open_handles(), 0U);
        EXPECT_EQ(simulation_.stale_handle_uses(), 0U);
    }

    machine::Volume& volume() { return simulation_.description().volumes.front(); }

    Simulation simulation_{machine::ParseDescription(kMachine, "the machine")};
    LoggerCapture log_;
    DWORD error_ = 0;
};

TEST_F(DescribedMachine, VolumeSearch_AllVolumes_EndsWithError18) {
    std::wstring volume;
    UniqueVolumeSearch search;

    ASSERT_TRUE(WinAPIWrapper::FindFirstVolumeW(volume, search, error_));
    EXPECT_EQ(volume, kVolume);
    EXPECT_FALSE(WinAPIWrapper::FindNextVolumeW(search, volume, error_));

    EXPECT_EQ(error_, 18U);
}

TEST_F(DescribedMachine, GetVolumePathNames_NameWithoutBackslash_IsFound) {
    std::vector<std::wstring> paths;
    const std::wstring name = kVolume;

    EXPECT_TRUE(
        WinAPIWrapper::GetVolumePathNamesForVolumeNameW(name.substr(0, name.size() - 1), paths, error_));

    EXPECT_THAT(paths, ElementsAre(L"C:\\"));
}

TEST_F(DescribedMachine, GetVolumePathNames_MoreThan512Characters_NeedOneRetry) {
    std::vector<std::wstring> folders;
    for (int i = 0; i < 40; ++i) {
        folders.push_back(L"C:\\A folder with a long name, number " + std::to_wstring(i) + L"\\");
    }
    volume().mount_points = folders;
    std::vector<std::wstring> paths;

    EXPECT_TRUE(WinAPIWrapper::GetVolumePathNamesForVolumeNameW(kVolume, paths, error_));

    EXPECT_EQ(paths, folders);
    EXPECT_EQ(simulation_.calls().Count("GetVolumePathNamesForVolumeNameW"), 2U);
}

TEST_F(DescribedMachine, QueryDosDevice_Drive_IsItsDevice) {
    std::vector<std::wstring> targets;
    EXPECT_TRUE(WinAPIWrapper::QueryDosDeviceW(L"C:", targets, error_));
    EXPECT_THAT(targets, ElementsAre(L"\\Device\\HarddiskVolume1"));
}

TEST_F(DescribedMachine, QueryDosDevice_EmptyName_ListsAllNames) {
    std::vector<std::wstring> targets;
    EXPECT_TRUE(WinAPIWrapper::QueryDosDeviceW(L"", targets, error_));
    EXPECT_THAT(targets, IsSupersetOf({L"C:", L"PhysicalDrive0"}));
}

TEST_F(DescribedMachine, QueryDosDevice_UnknownName_IsError2) {
    std::vector<std::wstring> targets;
    EXPECT_FALSE(WinAPIWrapper::QueryDosDeviceW(L"Q:", targets, error_));
    EXPECT_EQ(error_, DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(DescribedMachine, VolumeFacts_ByItsName_AreTheDescribedOnes) {
    UINT type = 0;
    win::VolumeInformation information;
    win::DiskFreeSpaceEx space;

    EXPECT_TRUE(WinAPIWrapper::GetDriveTypeW(kVolume, type, error_));
    EXPECT_TRUE(WinAPIWrapper::GetVolumeInformationW(kVolume, information, error_));
    EXPECT_TRUE(WinAPIWrapper::GetDiskFreeSpaceExW(kVolume, space, error_));

    EXPECT_EQ(type, UINT{DRIVE_FIXED});
    EXPECT_EQ(information.label, L"System");
    EXPECT_EQ(information.file_system, L"NTFS");
    EXPECT_EQ(information.serial_number, 3405691582U);
    EXPECT_EQ(space.total_free, 104857600U);
}

TEST_F(DescribedMachine, Disk_GeometryLayoutAndLength_AreRead) {
    UniqueFile drive;
    win::ByteBuffer geometry;
    win::ByteBuffer layout;
    std::int64_t length = 0;

    ASSERT_TRUE(WinAPIWrapper::OpenPhysicalDrive(0, GENERIC_READ, &drive, error_));
    EXPECT_TRUE(WinAPIWrapper::GetDriveGeometryEx(drive, 0, geometry, error_));
    EXPECT_TRUE(WinAPIWrapper::GetDriveLayoutEx(drive, 0, layout, error_));
    EXPECT_TRUE(WinAPIWrapper::GetDiskLengthInformation(drive, L"disk 0", length, error_));

    EXPECT_EQ(length, 1073741824);
    ASSERT_GE(geometry.size(), 56U);
    EXPECT_EQ(reinterpret_cast<const DISK_GEOMETRY_EX*>(geometry.data())->DiskSize.QuadPart, 1073741824);
    EXPECT_THAT(layout, SizeIs(48 + 4 * 144));
    EXPECT_EQ(simulation_.calls().Count("DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX"), 2U);
}

TEST_F(DescribedMachine, VolumeDiskExtents_MoreThanTheFirstBufferHolds_GrowOnError122) {
    volume().extents.emplace(30, machine::Extent{0, 4096, 8192});
    volume().extents_short_error = ERROR_INSUFFICIENT_BUFFER;
    UniqueFile file;
    win::ByteBuffer extents;

    ASSERT_TRUE(WinAPIWrapper::CreateFileW(L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1", {}, file, error_));
    EXPECT_TRUE(WinAPIWrapper::GetVolumeDiskExtents(file, kVolume, extents, error_));

    EXPECT_THAT(extents, SizeIs(8 + 30 * 24));
}

TEST_F(DescribedMachine, Drive_ThatIsNotThere_IsError2) {
    UniqueFile drive;
    EXPECT_FALSE(WinAPIWrapper::OpenPhysicalDrive(5, 0, &drive, error_));
    EXPECT_EQ(error_, DWORD{ERROR_FILE_NOT_FOUND});
}

class DescribedDirectories : public DescribedMachine {
protected:
    std::vector<win::DirectoryEntry> List(const std::wstring& path) {
        UniqueDirectory directory;
        EXPECT_TRUE(NtAPIWrapper::OpenDirectoryObject(path, directory, error_));
        std::vector<win::DirectoryEntry> entries;
        win::DirectoryEntry entry;
        win::ByteBuffer buffer;
        ULONG context = 0;
        bool first = true;
        while (NtAPIWrapper::QueryDirectoryObject(directory, first, context, buffer, entry, error_)) {
            entries.push_back(entry);
            first = false;
        }
        last_error_ = error_;
        EXPECT_TRUE(NtAPIWrapper::CloseObject(directory, error_));
        return entries;
    }

    DWORD last_error_ = 0;
};

auto Entry(const std::wstring& name, const std::wstring& type) {
    return testing::AllOf(testing::Field(&win::DirectoryEntry::name, name),
                          testing::Field(&win::DirectoryEntry::type_name, type));
}

TEST_F(DescribedDirectories, Device_Listing_HoldsTheVolumeAndEndsWithError18) {
    EXPECT_THAT(List(L"\\Device"), Contains(Entry(L"HarddiskVolume1", L"Device")));
    EXPECT_EQ(last_error_, 18U);
}

TEST_F(DescribedDirectories, Global_Listing_HoldsTheVolumesLink) {
    EXPECT_THAT(List(L"\\GLOBAL??"),
                Contains(Entry(L"Volume{11111111-2222-3333-4444-555555555555}", L"SymbolicLink")));
}

TEST_F(DescribedDirectories, EntriesOfSeveralLengths_AreAllReadWithALineForEachDoubling) {
    machine::ObjectDirectory directory{L"\\Device",
                                       {{{std::wstring(10, L'a'), L"Device"},
                                         {std::wstring(300, L'b'), L"Device"},
                                         {std::wstring(5, L'c'), L"Device"}}},
                                       {}};
    simulation_.description().directories = {directory};

    EXPECT_THAT(List(L"\\Device"), ElementsAre(Entry(std::wstring(10, L'a'), L"Device"),
                                               Entry(std::wstring(300, L'b'), L"Device"),
                                               Entry(std::wstring(5, L'c'), L"Device")));

    EXPECT_EQ(log_.Count(support::kHostTrace, "Buffer too small - size=260, retry..."), 1U) << log_;
    EXPECT_EQ(log_.Count(support::kHostTrace, "Buffer too small - size=520, retry..."), 1U);
    EXPECT_EQ(log_.Count(support::kHostTrace, "Buffer too small - size=1040, retry..."), 0U);
}

TEST_F(DescribedDirectories, DirectoryThatIsNotThere_IsAGeneralFailure) {
    UniqueDirectory directory;

    EXPECT_FALSE(NtAPIWrapper::OpenDirectoryObject(L"\\Nowhere", directory, error_));

    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
    EXPECT_TRUE(
        log_.Contains(support::kHostTrace, "win::NtAPIWrapper::OpenDirectoryObject - failed status=c0000034"))
        << log_;
}

}  // namespace
