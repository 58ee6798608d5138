#include "common/volume/volume_manager.h"

#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace bmr_common {
namespace {

using support::Trace;
using testing::ElementsAre;

// A manager initialised with the machine's two volumes.
class VolumeManagerTest : public testing::Test {
protected:
    VolumeManagerTest() {
        EXPECT_TRUE(manager_.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));
        log_.Clear();
    }

    std::wstring DeviceOf(const std::wstring& name) const {
        const VolumePtr volume = manager_.GetVolume(name);
        return volume ? volume->device_name() : L"";
    }

    support::LoggerCapture log_;
    described::Machine machine_;
    VolumeManager manager_;
};

TEST_F(VolumeManagerTest, GetVolume_EachFormOfItsNames_IsTheVolume) {
    for (const wchar_t* name :
         {L"00000000-0000-0000-0000-000000000002", L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
          L"\\Device\\HarddiskVolume2", L"\\Device\\HARDDISKVOLUME2\\",
          L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume2"}) {
        EXPECT_EQ(L"\\Device\\HarddiskVolume2", DeviceOf(name)) << name;
    }
}

TEST_F(VolumeManagerTest, GetVolume_Guid_IsTracedAsADeviceNameInUnexpectedFormat) {
    const std::pair<const wchar_t*, const char*> names[] = {
        {L"00000000-0000-0000-0000-000000000002", "00000000-0000-0000-0000-000000000002"},
        {described::kDataId, "\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\"},
    };
    for (const auto& [name, text] : names) {
        log_.Clear();
        EXPECT_TRUE(manager_.GetVolume(name)) << text;
        EXPECT_THAT(log_.all(),
                    ElementsAre(Trace("bmr_common::Volume::ConvertToNormalizedDeviceId device name '" +
                                      std::string(text) + "' in unexpected format")));
    }
}

TEST_F(VolumeManagerTest, GetVolume_GuidInAnotherCase_IsTheVolume) {
    machine_.volume(1).guid = L"{abcdef00-0000-0000-0000-000000000002}";
    VolumeManager manager;
    EXPECT_TRUE(manager.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));

    const VolumePtr volume = manager.GetVolume(L"ABCDEF00-0000-0000-0000-000000000002");

    ASSERT_TRUE(volume);
    EXPECT_EQ(L"\\Device\\HarddiskVolume2", volume->device_name());
}

TEST_F(VolumeManagerTest, GetVolume_NoSuchName_IsTracedOnce) {
    const std::pair<const wchar_t*, const char*> names[] = {
        {L"00000000-0000-0000-0000-000000000009", "00000000-0000-0000-0000-000000000009"},
        {L"\\Device\\HarddiskVolume9", "\\Device\\HarddiskVolume9"},
        {L"\\Device\\HarddiskVolume", "\\Device\\HarddiskVolume"},
        {L"C:\\", "C:\\"},
        // Already starts with the prefix, so nothing is added.
        {L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}",
         "\\\\?\\Volume{00000000-0000-0000-0000-000000000002}"},
    };
    for (const auto& [name, text] : names) {
        log_.Clear();
        EXPECT_FALSE(manager_.GetVolume(name)) << text;
        EXPECT_EQ(1U, log_.Count(support::kHostTrace,
                                 std::string("VolumeManager::GetVolume: bad GUID ") + text + ", no match"))
            << log_;
    }
}

TEST_F(VolumeManagerTest, GetVolume_EmptyName_IsNotTheVolumeWithoutGuid) {
    machine_.volume(0).guid.clear();
    VolumeManager manager;
    EXPECT_TRUE(manager.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));
    ASSERT_EQ(2U, manager.volumes().size());

    EXPECT_FALSE(manager.GetVolume(L""));
}

TEST_F(VolumeManagerTest, GetVolume_StartOfAnExtent_IsTheVolume) {
    const VolumePtr volume = manager_.GetVolume(0, 501LL << 20);

    ASSERT_TRUE(volume);
    EXPECT_EQ(L"\\Device\\HarddiskVolume2", volume->device_name());
}

TEST_F(VolumeManagerTest, GetVolume_SecondExtent_IsFoundToo) {
    machine_.volume(1).extents = std::vector<machine::Extent>{{0, 1 << 20, 512}, {7, 4096, 512}};
    VolumeManager manager;
    EXPECT_TRUE(manager.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));

    EXPECT_EQ(manager.volumes()[1], manager.GetVolume(7, 4096));
    EXPECT_EQ(manager.volumes()[0], manager.GetVolume(0, 1 << 20))
        << "the first of two volumes that start there";
}

TEST_F(VolumeManagerTest, Capture_NoVolumes_WritesTheirNumber) {
    const VolumeManager manager;

    EXPECT_THAT(captured::Elements([&](CMSXmlNode& node) { manager.CaptureInfo(node); }),
                ElementsAre("VolumeInfo", "VolumeInfo/NumberOfVolumes=0"));
}

}  // namespace
}  // namespace bmr_common
