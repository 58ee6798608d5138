// The format 3 document of every example machine, element by element.

#include "export/capture_fixture.h"
#include "export/expected_document.h"
#include "machine/description/wmi_defaults.h"
#include "support/text.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

XmlTree TreeOf(const std::string& document) {
    return XmlTree::Of(support::Utf8(support::Wide(document)));
}

const std::filesystem::path kMachines = ORVANE_SOURCE_DIR "/examples/machines";

std::string TextOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The example machines with this text in one of their expected files.
std::vector<std::string> ExamplesWith(const std::string& file, const std::string& text) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kMachines)) {
        if (TextOf(entry.path() / "expected" / file).find(text) != std::string::npos) {
            names.push_back(entry.path().filename().string());
        }
    }
    return names;
}

// The example machines of which format 3 has a document.
std::vector<std::string> DescribedExamples() {
    return ExamplesWith("format3.xml", "<root>");
}

// Those, and the machines of which only the agent's selection is refused: the captures here select nothing.
std::vector<std::string> ExamplesWithoutSelection() {
    std::vector<std::string> names = DescribedExamples();
    const std::vector<std::string> more =
        ExamplesWith("format3.refused.txt", "Exception: I cannot backup the needed information");
    names.insert(names.end(), more.begin(), more.end());
    return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& machine) {
    std::string text = machine.param;
    std::replace(text.begin(), text.end(), '-', '_');
    return text;
}

class ExampleDocument : public CaptureTest, public testing::WithParamInterface<std::string> {
protected:
    ExampleDocument() : CaptureTest(Machine(GetParam())) {}
};

TEST_P(ExampleDocument, EveryElement_IsAsDescribed) {
    EXPECT_EQ(WithoutAddresses(TreeOf(Document())), ExpectedDocument(simulation().machine()));
}

INSTANTIATE_TEST_SUITE_P(Machines, ExampleDocument, testing::ValuesIn(ExamplesWithoutSelection()), TestName);

class ExampleFile : public testing::TestWithParam<std::string> {};

// The expected file has the same elements, with a word in the place of each address.
TEST_P(ExampleFile, EveryElement_IsAsDescribed) {
    std::string text = TextOf(kMachines / GetParam() / "expected/format3.xml");
    const std::string masked = "<GUID>address<";
    for (std::size_t place = text.find(masked); place != std::string::npos; place = text.find(masked)) {
        text.replace(place, masked.size(), "<GUID>A<");
    }
    EXPECT_EQ(WithoutAddresses(XmlTree::Of(text)),
              ExpectedDocument(machine::LoadDescription(kMachines / GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Machines, ExampleFile, testing::ValuesIn(DescribedExamples()), TestName);

TEST(ExampleMachines, Some_AreThere) {
    EXPECT_FALSE(DescribedExamples().empty());
}

class MixedDocument : public CaptureTest {
protected:
    MixedDocument() : CaptureTest(MixedMachine()) {}
};

TEST_F(MixedDocument, EveryElement_IsAsDescribed) {
    EXPECT_EQ(WithoutAddresses(TreeOf(Document())), ExpectedDocument(simulation().machine()));
}

class DocumentTexts : public CaptureTest {};

TEST_F(DocumentTexts, MarkupInALabel_IsEscaped) {
    simulation().description().volumes.at(2).label = L"<a> & \"b\" ]]>";
    const std::string document = Document();
    EXPECT_THAT(document, testing::HasSubstr("<VolumeLabel>&lt;a&gt; &amp; "));
    EXPECT_EQ(WithoutAddresses(TreeOf(document)), ExpectedDocument(simulation().machine()));
}

TEST_F(DocumentTexts, LettersOfTheCodePage_ComeAsItsBytes) {
    simulation().description().volumes.at(2).label =
        L"\x00DC"
        L"bung";
    EXPECT_THAT(Document(), testing::HasSubstr("<VolumeLabel>" +
                                               support::Ansi(L"\x00DC"
                                                             L"bung") +
                                               "</VolumeLabel>"));
}

TEST_F(DocumentTexts, LettersBeyondTheCodePage_LeaveTheDocumentWhole) {
    simulation().description().volumes.at(2).label = L"\x4E2D\xD83D\xDCBE";
    EXPECT_EQ(WithoutAddresses(TreeOf(Document())), ExpectedDocument(simulation().machine()));
}

// The code page lacks these characters. Its best fit for them is '<', '>' and '&', which would be markup.
TEST_F(DocumentTexts, LettersThatTheCodePageTakesForMarkup_AreWrittenByTheirNumbers) {
    simulation().description().volumes.at(2).label = L"\xFF1C\xFF1E\xFF06";
    EXPECT_THAT(Document(), testing::HasSubstr("<VolumeLabel>&#65308;&#65310;&#65286;</VolumeLabel>"));
}

// A control character, which may come from a firmware, and half of a pair; other characters stay.
TEST_F(DocumentTexts, CharactersThatXmlForbids_AreReplacedInEveryFormat) {
    simulation().description().volumes.at(2).label = L"a\x0001\tz\xD83D";
    machine::WmiValue model;
    model.type = VT_BSTR;
    model.text = L"Disk\x001F";
    machine::SetProperty(
        simulation().description().wmi.at(machine::WmiClassKey(L"Win32_ComputerSystem")).instances.at(0),
        {L"Model", model});
    const std::string label = support::Ansi(L"a\xFFFD\tz\xFFFD");
    for (const std::uint32_t format : {2U, 3U}) {
        library_.SetXmlFormat(format);
        const std::string document = Document();
        EXPECT_THAT(document, testing::HasSubstr(format == 2 ? "<Label>" + label + "</Label>"
                                                             : "<VolumeLabel>" + label + "</VolumeLabel>"));
        EXPECT_THAT(document, testing::HasSubstr("<Model>" + support::Ansi(L"Disk\xFFFD") + "</Model>"));
    }
}

TEST_F(DocumentTexts, TextsAsLongAsTheyMayBe_AreKept) {
    simulation().description().volumes.at(2).label = std::wstring(32, L'L');
    simulation().description().volumes.at(2).mount_points.push_back(L"C:\\" + std::wstring(240, L'd') +
                                                                    L"\\");
    EXPECT_EQ(WithoutAddresses(TreeOf(Document())), ExpectedDocument(simulation().machine()));
}

}  // namespace
