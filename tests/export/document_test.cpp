// Texts that are hard to write into a document: markup, letters of other code pages, long texts.

#include "export/capture_fixture.h"
#include "machine/description/wmi_defaults.h"
#include "support/text.h"
#include "support/xml_tree.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

XmlTree TreeOf(const std::string& document) {
    return XmlTree::Of(support::Utf8(support::Wide(document)));
}

// The texts of all elements with that name, in document order.
std::vector<std::string> TextsOf(const XmlTree& tree, const std::string& name) {
    std::vector<std::string> texts;
    if (tree.name == name) {
        texts.push_back(tree.text);
    }
    for (const XmlTree& child : tree.children) {
        const std::vector<std::string> below = TextsOf(child, name);
        texts.insert(texts.end(), below.begin(), below.end());
    }
    return texts;
}

class DocumentTexts : public CaptureTest {
protected:
    // What a reader of the document finds in these elements.
    std::vector<std::string> Read(const std::string& name) { return TextsOf(TreeOf(Document()), name); }
};

TEST_F(DocumentTexts, MarkupInALabel_IsEscaped) {
    simulation().description().volumes.at(2).label = L"<a> & \"b\" ]]>";
    EXPECT_THAT(Document(), testing::HasSubstr("<VolumeLabel>&lt;a&gt; &amp; "));
    EXPECT_THAT(Read("VolumeLabel"), testing::Contains("<a> & \"b\" ]]>"));
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
    EXPECT_THAT(Read("VolumeLabel"), testing::Contains(support::Ansi(L"\x4E2D\xD83D\xDCBE")));
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
    EXPECT_THAT(Read("VolumeLabel"), testing::Contains(std::string(32, 'L')));
    EXPECT_THAT(Read("MountPoint2"), testing::Contains("C:\\" + std::string(240, 'd') + "\\"));
}

}  // namespace
