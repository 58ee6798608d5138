// The capture call: buffer, size and status.

#include "export/capture_fixture.h"
#include "support/disk_addresses.h"
#include "support/own_process.h"
#include "support/xml_tree.h"

#include <gmock/gmock.h>

namespace {

using support::Error;
using support::Trace;
using testing::Contains;
using testing::EndsWith;
using testing::Not;
using testing::StartsWith;

class CaptureProtocol : public CaptureTest, public testing::WithParamInterface<std::uint32_t> {
protected:
    CaptureProtocol() { library_.SetXmlFormat(GetParam()); }
};

TEST_P(CaptureProtocol, SizeQuery_TellsTheLengthAndIsNoError) {
    const Captured captured = Capture(0);
    EXPECT_EQ(captured.status, ORVANE_BUFFER_TOO_SMALL);
    EXPECT_GT(captured.required_size, 1000U);
    EXPECT_LT(captured.required_size, 100000U);
    EXPECT_THAT(log_.all(), Contains(Trace("InfoGrabber::CaptureInfo: output buffer too small")));
    EXPECT_EQ(log_.Count(support::kHostError), 0U) << log_;
}

TEST_P(CaptureProtocol, SizeQueryWithANullBuffer_IsAllowed) {
    std::uint32_t length = 0;
    EXPECT_EQ(library_.CaptureSystemRestorePointInfo(nullptr, 0, &length), ORVANE_BUFFER_TOO_SMALL);
    EXPECT_EQ(length, Length());
}

TEST_P(CaptureProtocol, BufferOfTheExactLength_ReceivesTheWholeDocument) {
    const std::uint32_t length = Length();
    const Captured captured = Capture(length);
    EXPECT_EQ(captured.status, ORVANE_SUCCESS);
    EXPECT_EQ(captured.required_size, length);
    EXPECT_THAT(captured.buffer, StartsWith("<root>"));
    EXPECT_THAT(captured.buffer, EndsWith("</root>"));
}

TEST_P(CaptureProtocol, BufferOneByteTooShort_IsUntouched) {
    const std::uint32_t length = Length();
    const Captured captured = Capture(length - 1);
    EXPECT_EQ(captured.status, ORVANE_BUFFER_TOO_SMALL);
    EXPECT_EQ(captured.required_size, length);
    EXPECT_EQ(captured.buffer, std::string(length - 1, '#'));
}

TEST_P(CaptureProtocol, LargerBuffer_KeepsItsRest) {
    const std::uint32_t length = Length();
    const Captured captured = Capture(length + 1000);
    EXPECT_EQ(captured.status, ORVANE_SUCCESS);
    EXPECT_EQ(captured.required_size, length);
    EXPECT_THAT(captured.buffer, EndsWith("</root>" + std::string(1000, '#')));
}

TEST_P(CaptureProtocol, NullRequiredSize_IsAllowed) {
    const std::uint32_t length = Length();
    std::string buffer(length, '#');
    EXPECT_EQ(library_.CaptureSystemRestorePointInfo(buffer.data(), length - 1, nullptr),
              ORVANE_BUFFER_TOO_SMALL);
    EXPECT_EQ(library_.CaptureSystemRestorePointInfo(buffer.data(), length, nullptr), ORVANE_SUCCESS);
    EXPECT_THAT(buffer, EndsWith("</root>"));
    EXPECT_EQ(library_.CaptureSystemRestorePointInfo(nullptr, 0, nullptr), ORVANE_BUFFER_TOO_SMALL);
}

TEST_P(CaptureProtocol, NullBufferThatWouldBeLargeEnough_FailsCleanly) {
    std::uint32_t length = Captured::kUntouched;
    EXPECT_EQ(library_.CaptureSystemRestorePointInfo(nullptr, 1000000, &length), ORVANE_FAILED);
    EXPECT_EQ(length, Captured::kUntouched);
    EXPECT_EQ(LastError(), "CaptureSystemRestorePointInfo Exception");
    EXPECT_EQ(library_.CaptureSystemRestorePointInfo(nullptr, 0xFFFFFFFFU, nullptr), ORVANE_FAILED);
}

TEST_P(CaptureProtocol, LinesOfTheExport_FrameTheCall) {
    log_.Clear();
    Capture(0);
    ASSERT_GT(log_.all().size(), 3U);
    EXPECT_EQ(log_.all()[0], Trace("Entering CaptureSystemRestorePointInfo"));
    EXPECT_EQ(log_.all()[1],
              Trace("CaptureSystemRestorePointInfo gSaveXmlFormat=" + std::to_string(GetParam())));
    EXPECT_EQ(log_.all().back(), Trace("Exiting CaptureSystemRestorePointInfo"));
}

INSTANTIATE_TEST_SUITE_P(Formats, CaptureProtocol, testing::Values(2U, 3U));

using RepeatedCapture = CaptureTest;

TEST_F(RepeatedCapture, EveryCapture_CollectsAnew) {
    const std::string before = Document();
    EXPECT_EQ(support::WithoutAddresses(Document()), support::WithoutAddresses(before));
    simulation().description().volumes.at(2).label = L"Renamed";
    EXPECT_THAT(Document(), testing::HasSubstr("<VolumeLabel>Renamed</VolumeLabel>"));
}

TEST_F(RepeatedCapture, Format_IsThatOfTheLastSetting) {
    library_.SetXmlFormat(7);
    library_.SetXmlFormat(3);
    EXPECT_EQ(Capture(0).status, ORVANE_BUFFER_TOO_SMALL);
}

// --- The format setting, by the version in the document.

struct FormatCase {
    std::uint32_t format;
    const char* version;
};

void PrintTo(const FormatCase& format_case, std::ostream* out) {
    *out << format_case.format;
}

class DocumentOfFormat : public CaptureTest, public testing::WithParamInterface<FormatCase> {
protected:
    DocumentOfFormat() : CaptureTest(Machine("bios-laptop")) {}
};

TEST_P(DocumentOfFormat, Version_IsThatOfItsGrabber) {
    library_.SetXmlFormat(GetParam().format);
    log_.Clear();
    EXPECT_EQ(XmlTree::Of(Document()).Child("BMREnvInfo").Child("Version").text, GetParam().version);
    EXPECT_THAT(log_.all(), Contains(Trace("CaptureSystemRestorePointInfo gSaveXmlFormat=" +
                                           std::to_string(GetParam().format))));
    EXPECT_THAT(log_.all(), Not(Contains(Error("Invalid type of information grabber"))));
}

INSTANTIATE_TEST_SUITE_P(Formats, DocumentOfFormat,
                         testing::Values(FormatCase{0, "5"}, FormatCase{1, "3"}, FormatCase{2, "5"},
                                         FormatCase{3, "7"}, FormatCase{4, "5"}, FormatCase{7, "5"},
                                         FormatCase{0xFFFFFFFF, "5"}));

// The default before any format was set. Runs in its own process because the setting is process-wide.
TEST(DefaultFormat, Capture_IsThatOfFormat2) {
    if (!support::InOwnProcess()) {
        return;
    }
    const ShippedLibrary& library = ShippedLibrary::Get();
    const machine::Session session(
        machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/uefi-workstation"));
    const support::LogCapture log(library.SetEventFunc);
    EXPECT_EQ(library.CaptureSystemRestorePointInfo(nullptr, 0, nullptr), ORVANE_BUFFER_TOO_SMALL);
    EXPECT_THAT(log.all(), Contains(Trace("CaptureSystemRestorePointInfo gSaveXmlFormat=2")));
    EXPECT_TRUE(log.ContainsPart(support::kHostTrace, "orvane::InfoGrabberV2::ObtainInformation")) << log;
}

}  // namespace
