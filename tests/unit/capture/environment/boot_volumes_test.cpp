#include "capture/environment/boot_volumes.h"

#include "machine/session/session.h"
#include "support/each_of.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace {

using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNoSystemVolume[] =
    "Failed to find System volume '\\Device\\System'. This happens if disk has been converted to Dynamic or "
    "after BMR restore. Rebooting usually fixes problem.";
constexpr char kNoBootVolume[] =
    "Failed to find Boot volume '\\Device\\Boot'. This happens if disk has been converted to Dynamic or "
    "after "
    "BMR restore. Rebooting usually fixes problem.";

::Volume VolumeOf(const wchar_t* guid, const wchar_t* device, const wchar_t* letter = L"") {
    ::Volume volume;
    volume.m_GUID = guid;
    volume.DeviceName = device;
    volume.VolumeLetter = letter;
    return volume;
}

OSInfo System() {
    OSInfo os;
    os.SystemDevice = L"\\Device\\System";
    os.BootDevice = L"\\Device\\Boot";
    os.WindowsDirectory = L"C:\\WINDOWS";
    os.Name = L"The caption";
    os.Version = L"10.0.22631";
    os.ProductType = 3;
    os.OSArchitecture = 64;
    return os;
}

class FindBootAndSystemVolumesTest : public testing::Test {
protected:
    FindBootAndSystemVolumesTest() { session_.emplace(machine::ParseDescription("{}", "boot volumes")); }

    bool Find() { return FindBootAndSystemVolumes(volumes_, letters_, boot_, os_); }

    // Switches to another machine, with this registry.
    void Describe(std::vector<machine::RegistryKey> registry) {
        machine::Description description = machine::ParseDescription("{}", "boot volumes");
        description.registry = std::move(registry);
        session_.reset();
        session_.emplace(std::move(description));
    }

    std::optional<machine::Session> session_;
    support::LoggerCapture log_;
    std::vector<::Volume> volumes_;
    std::vector<DriveLetterEntry> letters_;
    BootConfig boot_;
    OSInfo os_ = System();
};

TEST_F(FindBootAndSystemVolumesTest, OneVolume_MayBeBoth) {
    os_.BootDevice = os_.SystemDevice;
    volumes_ = {VolumeOf(L"{1}", L"\\Device\\System")};
    EXPECT_TRUE(Find());
    EXPECT_EQ(boot_.m_guidBootVolume, L"{1}");
    EXPECT_EQ(boot_.m_guidSystemVolume, L"{1}");
    EXPECT_TRUE(volumes_[0].BootVolume);
    EXPECT_TRUE(volumes_[0].SystemVolume);
}

TEST_F(FindBootAndSystemVolumesTest, TwoWithTheSameDevice_LaterGuidStandsAndBothAreMarked) {
    volumes_ = {VolumeOf(L"{1}", L"\\Device\\System"), VolumeOf(L"{2}", L"\\Device\\Boot"),
                VolumeOf(L"{3}", L"\\Device\\System"), VolumeOf(L"{4}", L"\\Device\\Boot")};
    EXPECT_TRUE(Find());
    EXPECT_EQ(boot_.m_guidSystemVolume, L"{3}");
    EXPECT_EQ(boot_.m_guidBootVolume, L"{4}");
    EXPECT_TRUE(volumes_[0].SystemVolume);
    EXPECT_TRUE(volumes_[2].SystemVolume);
    EXPECT_TRUE(volumes_[1].BootVolume);
    EXPECT_TRUE(volumes_[3].BootVolume);
}

TEST_F(FindBootAndSystemVolumesTest, NoVolumes_ReportsTheSystemVolumeAndKeepsTheIdentity) {
    EXPECT_FALSE(Find());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error(kNoSystemVolume)));
    EXPECT_THAT(letters_, IsEmpty());
    EXPECT_EQ(boot_.m_strBootFolder, L"C:\\WINDOWS");
    EXPECT_EQ(boot_.m_strOS, L"The caption");
    EXPECT_EQ(boot_.m_strBootOptions, L"");
}

TEST_F(FindBootAndSystemVolumesTest, SystemVolumeMissing_ReportsItAloneEvenWhenBootIsFound) {
    volumes_ = {VolumeOf(L"{1}", L"\\Device\\Boot")};
    EXPECT_FALSE(Find());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error(kNoSystemVolume)));
    EXPECT_EQ(boot_.m_guidBootVolume, L"{1}");
    EXPECT_TRUE(volumes_[0].BootVolume);
    EXPECT_EQ(letters_.size(), 1U);
}

TEST_F(FindBootAndSystemVolumesTest, BootVolumeMissing_IsReportedAndNoOptionsAreRead) {
    volumes_ = {VolumeOf(L"{1}", L"\\Device\\System")};
    EXPECT_FALSE(Find());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error(kNoBootVolume)));
    EXPECT_EQ(boot_.m_guidSystemVolume, L"{1}");
    EXPECT_EQ(boot_.m_strBootOptions, L"");
}

// Without start options the whole step fails, although the volumes were found.
TEST_F(FindBootAndSystemVolumesTest, StartOptionsAbsent_FailsWithTheVolumesMarked) {
    Describe({{L"SYSTEM\\CurrentControlSet\\Control", {}}});
    volumes_ = {VolumeOf(L"{1}", L"\\Device\\Boot", L"C:\\"), VolumeOf(L"{2}", L"\\Device\\System")};

    EXPECT_FALSE(Find());

    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("GetBootOptions failed to find SystemStartOptions error=259")));
    EXPECT_EQ(boot_.m_guidBootVolume, L"{1}");
    EXPECT_EQ(boot_.m_guidSystemVolume, L"{2}");
    EXPECT_EQ(boot_.m_strBootFolder, L"C:\\WINDOWS");
    EXPECT_EQ(boot_.m_strBootOptions, L"");
    EXPECT_TRUE(volumes_[0].BootVolume);
    EXPECT_TRUE(volumes_[1].SystemVolume);
    ASSERT_EQ(letters_.size(), 2U);
    EXPECT_EQ(letters_[0].m_strDrive, L"C:\\");
}

class FindBootAndSystemVolumesName : public FindBootAndSystemVolumesTest,
                                     public testing::WithParamInterface<const wchar_t*> {};

TEST_P(FindBootAndSystemVolumesName, NotQuiteTheSame_IsAnotherVolume) {
    volumes_ = {VolumeOf(L"{1}", GetParam()), VolumeOf(L"{2}", L"\\Device\\Boot")};
    EXPECT_FALSE(Find());
    EXPECT_FALSE(volumes_[0].SystemVolume);
    EXPECT_EQ(boot_.m_guidSystemVolume, L"");
}

INSTANTIATE_TEST_SUITE_P(Names, FindBootAndSystemVolumesName,
                         testing::Values(L"\\device\\system", L"\\Device\\System\\", L"\\Device\\System1",
                                         L"\\Device\\Syste", L""));

// --- The order of the table.

std::vector<std::wstring> GuidsSortedBy(std::vector<::Volume> volumes) {
    SortVolumeTable(volumes);
    return support::EachOf(volumes, &::Volume::m_GUID);
}

TEST(SortVolumeTable, Letters_AreComparedByCodeUnitAndPrefixesComeFirst) {
    EXPECT_THAT(GuidsSortedBy({VolumeOf(L"{c}", L"", L"c:\\"), VolumeOf(L"{Z}", L"", L"Z:\\"),
                               VolumeOf(L"{C:\\}", L"", L"C:\\"), VolumeOf(L"{C:}", L"", L"C:")}),
                ElementsAre(L"{C:}", L"{C:\\}", L"{Z}", L"{c}"));
}

}  // namespace
