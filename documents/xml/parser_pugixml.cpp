// The parser of the native build. pugixml makes a tree inside of the text that it is given.

#include "documents/text/read_error.h"
#include "documents/text/utf8.h"
#include "documents/xml/parser.h"
#include "documents/xml/scanner.h"

#include <pugixml.hpp>

#include <algorithm>

namespace documents {

namespace {

// Only a reference, "&#13;", gives a carriage return. The SAX reader of the system makes it a line feed.
void PassValue(std::string_view name, std::string_view text, XmlEvents& events) {
    if (text.find('\r') == std::string_view::npos) {
        events.Value(name, text);
        return;
    }
    std::string changed(text);
    std::replace(changed.begin(), changed.end(), '\r', '\n');
    events.Value(name, changed);
}

// The scanner limits the depth.
void Walk(const pugi::xml_node& element, XmlEvents& events) {
    const pugi::xml_node child = element.first_child();
    if (!child) {
        PassValue(element.name(), element.value(), events);
        return;
    }
    events.Open(element.name());
    for (pugi::xml_node each = child; each; each = each.next_sibling()) {
        Walk(each, events);
    }
    events.Close();
}

}  // namespace

void ParseXml(std::string xml, XmlEvents& events) {
    const std::size_t root = RequireWellFormed(xml);
    // A value's text is kept in its element, which halves the memory; white space between elements is
    // dropped, that of a value is kept.
    constexpr unsigned kOptions =
        pugi::parse_default | pugi::parse_embed_pcdata | pugi::parse_ws_pcdata_single;
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer_inplace(xml.data() + root, xml.size() - root, kOptions, pugi::encoding_utf8);
    if (!result) {
        throw ReadError(PlaceOf(xml, root + static_cast<std::size_t>(result.offset)), result.description());
    }
    Walk(document.document_element(), events);
}

}  // namespace documents
