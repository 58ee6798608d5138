#include "documents/xml/scanner.h"

#include "documents/text/read_error.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Refusal(const std::string& xml) {
    try {
        documents::RequireWellFormed(xml);
    } catch (const documents::ReadError& error) {
        return error.what();
    }
    return {};
}

struct Refused {
    std::string xml;
    const char* refusal;
};

TEST(RequireWellFormed, WhatNoDocumentHas_IsRefusedWithItsPlace) {
    const Refused cases[] = {
        {"", "line 1, column 1: there is no element"},
        {"<a>", "line 1, column 4: the text ends inside of the element a"},
        {"<a><b>1</b", "line 1, column 11: the text ends inside of markup"},
        {"<a></b>", "line 1, column 4: the end of b where that of a was expected"},
        {"<a/></a>", "line 1, column 5: an end tag without a begin"},
        {"<a/><b/>", "line 1, column 5: a second root element"},
        {"x<a/>", "line 1, column 1: text outside of the root element"},
        {"<a/>\nx", "line 1, column 5: text outside of the root element"},
        {"<!DOCTYPE a><a/>", "line 1, column 1: a document type declaration"},
        {"<a>\r\n\xC3\xBC&nbsp;</a>", "line 2, column 2: an unknown entity"},
        {"<a>&#0;</a>", "line 1, column 4: a reference to a character that XML forbids"},
        {"<a>&#xD800;</a>", "line 1, column 4: a reference to a character that XML forbids"},
        {"<a>&#99999999999;</a>", "line 1, column 4: a reference that is not well-formed"},
        {"<a>&amp</a>", "line 1, column 4: a reference that is not well-formed"},
        {"<a>\x01</a>", "line 1, column 4: the character U+0001, which XML forbids"},
        {"<a>\xEF\xBF\xBF</a>", "line 1, column 4: the character U+FFFF, which XML forbids"},
        {"<a>]]></a>", "line 1, column 4: the end of a CDATA section without its begin"},
        {"<a><![CDATA[x]]></a>", "line 1, column 4: a CDATA section"},
        {"<a b='1'/>", "line 1, column 4: an attribute; a document has none"},
        {"<a:b/>", "line 1, column 3: the element's name is not well-formed"},
        {"<1/>", "line 1, column 2: a name was expected"},
        {"<a>x<b/></a>", "line 1, column 5: text between elements"},
        {"<a><b/>x</a>", "line 1, column 8: text between elements"},
        {"<a><!-- x</a>", "line 1, column 8: the comment has no end"},
        {"<a><b/><!-- x -- y --></a>", "line 1, column 15: two hyphens inside of a comment"},
        {"<a><b>1<!-- x --></b></a>", "line 1, column 18: a comment inside of a value"},
        {"<a/><?xml version='1.0'?>", "line 1, column 5: an XML declaration that is not at the beginning"},
        {"<?xml version='1.0'", "line 1, column 1: the XML declaration has no end"},
    };
    for (const Refused& one : cases) {
        EXPECT_EQ(Refusal(one.xml), one.refusal) << one.xml;
    }
}

TEST(RequireWellFormed, RealMarkup_Passes) {
    EXPECT_EQ(documents::RequireWellFormed(
                  "<?xml version='1.0'?>\n<!-- c -->\n<a >\n<b>&lt;&#x1F4BE;&quot;</b><c/>\n"
                  "<?p x?><!-- d --></a >\n<!-- e -->"),
              33U);
}

TEST(RequireWellFormed, SixtyFourLevels_AreTheMost) {
    const auto nested = [](std::size_t levels) {
        std::string xml;
        for (std::size_t level = 0; level < levels; ++level) {
            xml += "<a>";
        }
        for (std::size_t level = 0; level < levels; ++level) {
            xml += "</a>";
        }
        return xml;
    };
    EXPECT_EQ(Refusal(nested(64)), "");
    EXPECT_EQ(Refusal(nested(65)), "line 1, column 193: more than 64 levels of elements");
}

TEST(RequireWellFormed, MoreElementsThanADocumentHas_AreRefused) {
    std::string xml = "<a>";
    for (int count = 0; count < 100000; ++count) {
        xml += "<b/>";
    }
    EXPECT_NE(Refusal(xml + "</a>").find("more elements than a document of this size can have"),
              std::string::npos);
}

TEST(RequireWellFormed, MoreThanHundredThousandElementsInOne_AreRefused) {
    const auto with = [](std::size_t count) {
        std::string xml = "<a>";
        for (std::size_t index = 0; index < count; ++index) {
            xml += "<b>01234567890123</b>";
        }
        return xml + "</a>";
    };
    EXPECT_EQ(Refusal(with(100000)), "");
    EXPECT_EQ(Refusal(with(100001)), "line 1, column 2100004: more than 100000 elements in an element");
}

TEST(RequireWellFormed, ValueOverAMegabyte_IsRefused) {
    const std::size_t limit = std::size_t{1} << 20U;
    EXPECT_EQ(Refusal("<a>" + std::string(limit, 'x') + "</a>"), "");
    EXPECT_EQ(Refusal("<a>" + std::string(limit + 1, 'x') + "</a>"),
              "line 1, column 4: a value of more than 1 MiB");
}

}  // namespace
