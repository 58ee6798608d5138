#include "common/xml/ms_xml.h"

#include "com_thread.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing::AnyOf;

constexpr GUID kDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

class MsXml : public ComThread {
protected:
    void SetUp() override {
        ComThread::SetUp();
        ASSERT_TRUE(document_.LoadXML("<root></root>"));
        root_ = document_.GetRoot();
        ASSERT_TRUE(root_);
    }
    std::wstring Xml() const { return Flat(root_.GetXML()); }

    CMSXmlDoc document_;
    CMSXmlNode root_;
};

TEST_F(MsXml, GetXML_Always_HasNoDeclaration) {
    ASSERT_TRUE(document_.LoadXML("<?xml version=\"1.0\"?><root><a>1</a></root>"));
    EXPECT_EQ(Flat(document_.GetRoot().GetXML()), L"<root><a>1</a></root>");
}

struct Text {
    std::wstring given;
    std::wstring written;
};

class MsXmlTexts : public MsXml, public testing::WithParamInterface<Text> {};

TEST_P(MsXmlTexts, SetText_AnyCharacters_AreEscapedAsNeeded) {
    root_.SetText(GetParam().given);
    EXPECT_EQ(TextOf(root_.GetXML()), L"<root>" + GetParam().written + L"</root>");
}

INSTANTIATE_TEST_SUITE_P(Table, MsXmlTexts,
                         testing::Values(Text{L"plain", L"plain"},                            //
                                         Text{L"a < b & c > d", L"a &lt; b &amp; c &gt; d"},  //
                                         Text{L"&amp;", L"&amp;amp;"},                        //
                                         Text{L"\\\\?\\Volume{1}\\", L"\\\\?\\Volume{1}\\"},  //
                                         Text{L"\x00E4\x20AC\x4E2D", L"\x00E4\x20AC\x4E2D"},  //
                                         Text{L"\xD83D\xDE00", L"\xD83D\xDE00"},              //
                                         Text{L"  two  blanks  ", L"  two  blanks  "}));

TEST_F(MsXml, SetText_TextWithAZeroCharacter_EndsThere) {
    root_.SetText(std::wstring_view(L"be\0fore", 7));
    EXPECT_EQ(Xml(), L"<root>be</root>");
}

// One character of each class that XML forbids, and a text as a machine's firmware may report it.
class MsXmlForbidden : public MsXml, public testing::WithParamInterface<Text> {};

TEST_P(MsXmlForbidden, AddTextChild_DocumentCanBeLoadedAgain) {
    root_.AddTextChild("Value", GetParam().given);

    XmlDocumentPtr again;
    ASSERT_EQ(CoCreateInstance(kDocument30, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument,
                               reinterpret_cast<void**>(&again)),
              S_OK);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    ASSERT_EQ(again->loadXML(root_.GetXML().get(), &loaded), S_OK);
    ASSERT_EQ(loaded, VARIANT_TRUE) << "not well-formed";
    XmlElementPtr element;
    ASSERT_EQ(again->get_documentElement(&element), S_OK);
    BSTR text = nullptr;
    ASSERT_EQ(element->get_text(&text), S_OK);
    const UniqueBstr owner(text);
    EXPECT_EQ(TextOf(owner), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(Classes, MsXmlForbidden,
                         testing::Values(Text{L"x\x0001y", L"x\xFFFDy"},                //
                                         Text{L"x\x001Fy", L"x\xFFFDy"},                //
                                         Text{L"x\x000By\x000Cz", L"x\xFFFDy\xFFFDz"},  //
                                         Text{L"x\xD83Dy", L"x\xFFFDy"},                //
                                         Text{L"x\xDE00y", L"x\xFFFDy"},                //
                                         Text{L"x\xFFFEy", L"x\xFFFDy"},                //
                                         Text{L"x\xFFFFy", L"x\xFFFDy"},                //
                                         Text{L"x\ty", L"x\ty"},                        //
                                         Text{L"x\xD83D\xDE00y", L"x\xD83D\xDE00y"},    //
                                         Text{L"Disk\x0001\x0002 A", L"Disk\xFFFD\xFFFD A"}));

TEST_F(MsXml, AddTextChild_Thrice_AreChildrenInOrder) {
    root_.AddTextChild("B", L"1 < 2");
    root_.AddTextChild("A", L"");
    root_.AddTextChild("B", L"3");
    EXPECT_THAT(Xml(), AnyOf(L"<root><B>1 &lt; 2</B><A/><B>3</B></root>",
                             L"<root><B>1 &lt; 2</B><A></A><B>3</B></root>"));
}

TEST_F(MsXml, SetText_Empty_LeavesAnEmptyElement) {
    root_.SetText(L"first");
    root_.SetText(L"");
    EXPECT_THAT(Xml(), AnyOf(L"<root/>", L"<root></root>"));
}

TEST_F(MsXml, SetText_VeryLong_IsWhole) {
    const std::wstring text(1'000'000, L'x');
    root_.SetText(text);
    EXPECT_EQ(Xml(), L"<root>" + text + L"</root>");
}

class MsXmlRefused : public MsXml, public testing::WithParamInterface<const char*> {};

TEST_P(MsXmlRefused, LoadXML_NoXml_IsFalseAndLeavesNoRoot) {
    CMSXmlDoc document;
    EXPECT_FALSE(document.LoadXML(GetParam()));
    EXPECT_FALSE(document.GetRoot());
}

INSTANTIATE_TEST_SUITE_P(Table, MsXmlRefused,
                         testing::Values("", "no xml", "<root>", "<root></other>", "<a></a><b></b>"));

struct AnsiText {
    UINT code_page;
    std::string given;
    std::wstring loaded;
};

// Simulates a system with this ANSI code page.
class MsXmlAnsi : public MsXml, public testing::WithParamInterface<AnsiText> {};

TEST_P(MsXmlAnsi, LoadXML_TextBeyondAscii_IsOfTheAnsiCodePage) {
    const auto real = &::MultiByteToWideChar;
    const support::StubImport stub(
        "MultiByteToWideChar", &::MultiByteToWideChar,
        [&](UINT page, DWORD flags, const char* text, int length, wchar_t* wide, int room) -> int {
            return real(page == CP_ACP ? GetParam().code_page : page, flags, text, length, wide, room);
        });
    ASSERT_TRUE(document_.LoadXML(("<root>" + GetParam().given + "</root>").c_str()));
    EXPECT_EQ(TextOf(document_.GetRoot().GetXML()), L"<root>" + GetParam().loaded + L"</root>");
}

INSTANTIATE_TEST_SUITE_P(Table, MsXmlAnsi,
                         testing::Values(AnsiText{1252, "\x80 \xE4\xFF", L"\x20AC \x00E4\x00FF"},
                                         AnsiText{1251, "\xC4\xE8\xF1\xEA", L"\x0414\x0438\x0441\x043A"},
                                         AnsiText{932, "\x92\x86", L"\x4E2D"},
                                         AnsiText{65001, "\xE2\x82\xAC", L"\x20AC"}));

TEST_F(MsXml, LoadXML_LongTextBeyondAscii_IsWhole) {
    const std::string euros(100'000, '\x80');
    const support::StubImport stub(
        "MultiByteToWideChar", &::MultiByteToWideChar,
        [real = &::MultiByteToWideChar](UINT, DWORD flags, const char* text, int length, wchar_t* wide,
                                        int room) -> int {
            return real(1252, flags, text, length, wide, room);
        });
    ASSERT_TRUE(document_.LoadXML(("<root>" + euros + "</root>").c_str()));
    EXPECT_EQ(TextOf(document_.GetRoot().GetXML()),
              L"<root>" + std::wstring(100'000, L'\x20AC') + L"</root>");
}

TEST_F(MsXml, GetRoot_NothingLoaded_IsTheEmptyNode) {
    const CMSXmlDoc document;
    EXPECT_FALSE(document.GetRoot());
}

}  // namespace
