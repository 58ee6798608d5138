#include "tools/orvane/indented_xml.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using host::IndentXml;

struct Layout {
    const char* name;
    const char* xml;
    const char* indented;
};

class IndentXmlLayout : public testing::TestWithParam<Layout> {};

TEST_P(IndentXmlLayout, Document_IsLaidOut) {
    EXPECT_EQ(IndentXml(GetParam().xml), GetParam().indented);
}

const Layout kLayouts[] = {
    {"EmptyElement", "<root/>", "<root/>\n"},
    {"ElementWithoutContent", "<root></root>", "<root></root>\n"},
    {"Text", "<a>text</a>", "<a>text</a>\n"},
    {"Children", "<a><b>1</b><c/></a>", "<a>\n  <b>1</b>\n  <c/>\n</a>\n"},
    {"Depth", "<a><b><c><d>1</d></c></b></a>",
     "<a>\n  <b>\n    <c>\n      <d>1</d>\n    </c>\n  </b>\n</a>\n"},
    {"Escapes", "<a><b>&lt;1&gt; &amp; 2</b></a>", "<a>\n  <b>&lt;1&gt; &amp; 2</b>\n</a>\n"},
    {"BlanksAreText", "<a><b>  </b></a>", "<a>\n  <b>  </b>\n</a>\n"},
    {"BlanksBesideChildrenAreLayout", "<a>\r\n\t<b>\r\n\t\t<c> </c>\r\n\t</b>\r\n</a>",
     "<a>\n  <b>\n    <c> </c>\n  </b>\n</a>\n"},
    {"BlanksInMixedTextAreKept", "<a><b> <c/> text</b></a>", "<a>\n  <b> <c/> text</b>\n</a>\n"},
    {"LineFeedsInText", "<a><b>one\r\ntwo</b></a>", "<a>\n  <b>one\r\ntwo</b>\n</a>\n"},
    {"TextBesideChildrenStaysWhole", "<a><b>text<c>1</c></b></a>", "<a>\n  <b>text<c>1</c></b>\n</a>\n"},
    {"TextBehindChildrenStaysWhole", "<a><b><c>1</c>text</b></a>", "<a>\n  <b><c>1</c>text</b>\n</a>\n"},
    {"CommentCounts", "<a><b><!--<c>--></b></a>", "<a>\n  <b><!--<c>--></b>\n</a>\n"},
    {"CharacterData", "<a><b><![CDATA[</b>]]></b></a>", "<a>\n  <b><![CDATA[</b>]]></b>\n</a>\n"},
    {"Attributes", "<a x=\"1>0\"><b y='\"/>'/></a>", "<a x=\"1>0\">\n  <b y='\"/>'/>\n</a>\n"},
    {"SameNameWithin", "<a><a>1</a></a>", "<a>\n  <a>1</a>\n</a>\n"},
    {"BlanksAround", " \r\n<a/>\r\n", "<a/>\n"},
};

INSTANTIATE_TEST_SUITE_P(Documents, IndentXmlLayout, testing::ValuesIn(kLayouts),
                         [](const auto& layout) { return layout.param.name; });

TEST(IndentXml, BytesBeyondAscii_AreKept) {
    EXPECT_EQ(IndentXml("<a><b>\xC3\xBC</b></a>"), "<a>\n  <b>\xC3\xBC</b>\n</a>\n");
}

class IndentXmlRefusal : public testing::TestWithParam<const char*> {};

TEST_P(IndentXmlRefusal, MalformedDocument_Throws) {
    EXPECT_THROW(IndentXml(GetParam()), std::invalid_argument) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Documents, IndentXmlRefusal,
                         testing::Values("", "text", "<", "<a", "<a>", "<a>text", "<a></b>", "</a>",
                                         "<a><b></a></b>", "<a/><b/>", "<a/>text", "<>", "<a><!-- </a>",
                                         "<a x=\"></a>"));

}  // namespace
