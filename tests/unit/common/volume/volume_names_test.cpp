#include "common/volume/volume.h"
#include "support/logger_capture.h"
#include "support/text.h"

#include <gmock/gmock.h>

#include <string>

namespace bmr_common {
namespace {

using support::Error;
using support::Trace;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const wchar_t* kGuid = L"01234567-89ab-cdef-0123-456789abcdef";
constexpr const wchar_t* kVolumeGuid = L"\\\\?\\Volume{01234567-89ab-cdef-0123-456789abcdef}\\";

struct Conversion {
    const wchar_t* from;
    const wchar_t* to;
};

constexpr Conversion kDeviceIds[] = {
    {L"\\Device\\HarddiskVolume3", L"\\Device\\HarddiskVolume3"},
    {L"\\Device\\HarddiskVolume3\\", L"\\Device\\HarddiskVolume3"},
    {L"\\Device\\HarddiskVolume3\\\\\\", L"\\Device\\HarddiskVolume3"},
    {L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume3", L"\\Device\\HarddiskVolume3"},
    {L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume2\\", L"\\Device\\HarddiskVolume2"},
    {L"\\??\\GLOBALROOT\\Device\\CdRom0\\", L"\\Device\\CdRom0"},
    {L"\\Device\\Harddisk0\\DR0", L"\\Device\\Harddisk0\\DR0"},
};

constexpr const wchar_t* kNoDeviceIds[] = {L"C:", L"", L"\\Device", L"Device\\HarddiskVolume3",
                                           L"\\\\?\\Volume{01234567-89ab-cdef-0123-456789abcdef}\\"};

class VolumeNamesTest : public testing::Test {
protected:
    support::LoggerCapture log_;
};

TEST_F(VolumeNamesTest, ConvertToNormalizedDeviceId_DeviceName_IsCutOnBothSides) {
    for (const Conversion& conversion : kDeviceIds) {
        std::wstring name = conversion.from;
        EXPECT_TRUE(Volume::ConvertToNormalizedDeviceId(name));
        EXPECT_EQ(conversion.to, name);
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(VolumeNamesTest, ConvertToNormalizedDeviceId_OtherForm_IsTracedAndKept) {
    for (const wchar_t* other : kNoDeviceIds) {
        log_.Clear();
        std::wstring name = other;
        EXPECT_FALSE(Volume::ConvertToNormalizedDeviceId(name));
        EXPECT_EQ(other, name);
        EXPECT_THAT(log_.all(),
                    ElementsAre(Trace("bmr_common::Volume::ConvertToNormalizedDeviceId device name '" +
                                      support::Ansi(other) + "' in unexpected format")));
    }
}

TEST_F(VolumeNamesTest, GetNormalizedDeviceId_DeviceName_IsTheConvertedCopy) {
    for (const Conversion& conversion : kDeviceIds) {
        const std::wstring name = conversion.from;
        EXPECT_EQ(conversion.to, Volume::GetNormalizedDeviceId(name));
        EXPECT_EQ(conversion.from, name);
    }
}

TEST_F(VolumeNamesTest, GetNormalizedDeviceId_OtherForm_IsAFailedAssertion) {
    Volume::GetNormalizedDeviceId(L"C:");

    const std::vector<support::LogLine> lines = log_.Messages();
    ASSERT_EQ(2U, lines.size()) << log_;
    EXPECT_EQ((Error("bmr_common::Volume::GetNormalizedDeviceId failed to convert device id C:")), lines[0]);
    EXPECT_EQ(support::kHostWarning, lines[1].level);
    EXPECT_THAT(lines[1].text, StartsWith("ASSERTION FAILED, "));
    EXPECT_THAT(lines[1].text, EndsWith(" able_to_convert_device_id"));
}

TEST_F(VolumeNamesTest, GetWin32APICompatibleName_DeviceName_GoesByTheGlobalRoot) {
    EXPECT_EQ(L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume3",
              Volume::GetWin32APICompatibleName(L"\\Device\\HarddiskVolume3"));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(VolumeNamesTest, GetWin32APICompatibleName_OtherForm_IsTracedAndEmpty) {
    for (const wchar_t* other : {L"C:", L"", L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume3"}) {
        log_.Clear();
        EXPECT_EQ(L"", Volume::GetWin32APICompatibleName(other));
        EXPECT_THAT(log_.all(),
                    testing::ElementsAre(Trace("bmr_common::Volume::GetWin32APICompatibleName device name '" +
                                               support::Ansi(other) + "' in unexpected format")));
    }
}

TEST_F(VolumeNamesTest, GetGuidFromVolumeGUID_EveryForm_IsTheBareText) {
    for (const wchar_t* form : {kVolumeGuid, L"\\\\?\\Volume{01234567-89ab-cdef-0123-456789abcdef}", kGuid}) {
        EXPECT_EQ(kGuid, Volume::GetGuidFromVolumeGUID(form));
    }
}

TEST_F(VolumeNamesTest, ConvertToNormalizedVolumeGUID_EveryForm_IsTheWholePath) {
    for (const wchar_t* form : {kVolumeGuid, L"\\\\?\\Volume{01234567-89ab-cdef-0123-456789abcdef}", kGuid}) {
        std::wstring name = form;
        EXPECT_TRUE(Volume::ConvertToNormalizedVolumeGUID(name));
        EXPECT_EQ(kVolumeGuid, name);
        EXPECT_EQ(kVolumeGuid, Volume::GetNormalizedVolumeGUID(form));
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(VolumeNamesTest, ConvertToNormalizedVolumeGUID_UpperCaseGuid_KeepsItsLetters) {
    EXPECT_EQ(L"\\\\?\\Volume{ABCDEF01-0000-0000-0000-000000000000}\\",
              Volume::GetNormalizedVolumeGUID(L"ABCDEF01-0000-0000-0000-000000000000"));
}

TEST_F(VolumeNamesTest, GetNormalizedVolumeGUID_NoGuid_IsAFailedAssertion) {
    Volume::GetNormalizedVolumeGUID(L"");

    const std::vector<support::LogLine> lines = log_.Messages();
    ASSERT_EQ(2U, lines.size()) << log_;
    EXPECT_EQ((Error("bmr_common::Volume::GetNormalizedVolumeGUID failed to convert volume_guid ")),
              lines[0]);
    EXPECT_EQ(support::kHostWarning, lines[1].level);
    EXPECT_THAT(lines[1].text, StartsWith("ASSERTION FAILED, "));
    EXPECT_THAT(lines[1].text, EndsWith(" able_to_convert_volume_GUID"));
}

}  // namespace
}  // namespace bmr_common
