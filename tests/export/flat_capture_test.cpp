// Captures in formats 1 and 2: errors that make them fail, and the effect of selected volumes.

#include "export/capture_fixture.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

constexpr char kRefused[] =
    "CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information";
constexpr char kNotCollected[] = "CaptureSystemRestorePointInfo Env Exception: Failed to obtain EnvInfo";

class FlatCapture : public CaptureTest {
protected:
    explicit FlatCapture(const char* machine = "bios-laptop") : FlatCapture(Machine(machine)) {}
    explicit FlatCapture(machine::Description description) : CaptureTest(std::move(description)) {
        library_.SetXmlFormat(2);
    }

    std::vector<std::string> Failed() {
        ExpectFailure();
        return log_.Lines(support::kHostError);
    }
};

TEST_F(FlatCapture, Format2_RefusesAVolumeThatIsNotThere) {
    library_.Select({L"X:"});
    EXPECT_THAT(
        Failed(),
        ElementsAre("Backup cannot proceed. Failed to find any information about volume X:.", kRefused));
}

TEST_F(FlatCapture, Format2_RefusesTheOpticalDriveWithItsReason) {
    const std::string volume = "\\\\?\\Volume{4e1f7b20-9a6d-11ec-b7c1-806e6f6e6963}\\";
    library_.Select({std::wstring(volume.begin(), volume.end())});
    const std::vector<std::string> lines = Failed();
    ASSERT_EQ(lines.size(), 3U) << log_;
    EXPECT_THAT(lines[0], testing::StartsWith("Volume " + volume + " (Mounted as:"));
    EXPECT_THAT(lines[0], testing::EndsWith(" cannot be backed up because:"));
    EXPECT_EQ(lines[1], "This not a fixed disk, type is 5");
    EXPECT_EQ(lines[2], kRefused);
}

TEST_F(FlatCapture, Format1_JudgesNothing) {
    library_.SetXmlFormat(1);
    library_.Select({L"X:", L"\\\\?\\Volume{4e1f7b20-9a6d-11ec-b7c1-806e6f6e6963}\\"});
    log_.Clear();
    EXPECT_EQ(Capture(1000000).status, ORVANE_SUCCESS) << log_;
    EXPECT_EQ(log_.Count(support::kHostError), 0U) << log_;
}

class FlatCaptureOfSpannedVolumes : public FlatCapture {
protected:
    FlatCaptureOfSpannedVolumes() : FlatCapture("spanned-dynamic") {}
};

TEST_F(FlatCaptureOfSpannedVolumes, Format2_AcceptsThem) {
    library_.Select({L"\\\\?\\Volume{d7a0c413-6e2f-11e9-9a85-00155d01c203}\\"});
    EXPECT_EQ(Capture(1000000).status, ORVANE_SUCCESS) << log_;
}

// One of the machine's volumes lies on a missing disk.
class FlatCaptureOfAMissingDisk : public FlatCapture {
protected:
    FlatCaptureOfAMissingDisk() : FlatCapture(MixedMachine()) {}
};

TEST_F(FlatCaptureOfAMissingDisk, Format2_FailsThoughNothingIsSelected) {
    EXPECT_THAT(Failed(),
                testing::IsSupersetOf({std::string("orvane::InfoGrabberV2::AddVolumeInfo Can't find disk 4"),
                                       std::string(kNotCollected)}));
}

}  // namespace
