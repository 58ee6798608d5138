#include "tools/orvane/indented_xml.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace host {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

struct Element {
    std::string_view source;  // the whole element
    std::string_view start_tag;
    std::string_view end_tag;  // empty for "<name/>"
    std::vector<Element> children;
    bool has_text = false;  // other than whitespace
};

// Parses elements. They refer to the text, which must outlive them.
class Reader {
public:
    explicit Reader(std::string_view xml) : xml_(xml) {}

    Element ReadElement() {
        Element element;
        const std::size_t begin = position_;
        element.start_tag = ReadTag();
        if (element.start_tag.size() < 2 || element.start_tag[1] == '/') {
            Fail();
        }
        if (!element.start_tag.ends_with("/>")) {
            ReadContent(element);
        }
        element.source = xml_.substr(begin, position_ - begin);
        return element;
    }

    void SkipBlanks() {
        position_ = xml_.find_first_not_of(kBlanks, position_);
        position_ = position_ == std::string_view::npos ? xml_.size() : position_;
    }

    void ExpectEnd() {
        SkipBlanks();
        if (position_ != xml_.size()) {
            Fail();
        }
    }

private:
    [[noreturn]] void Fail() const {
        throw std::invalid_argument("the document is not well-formed at byte " + std::to_string(position_));
    }

    void ReadContent(Element& element) {
        while (!Rest().starts_with("</")) {
            const std::string_view text = ReadText();
            if (text.empty()) {
                element.children.push_back(ReadElement());
            }
            element.has_text = element.has_text || text.find_first_not_of(kBlanks) != std::string_view::npos;
        }
        element.end_tag = ReadTag();
        if (NameOf(element.start_tag.substr(1)) != NameOf(element.end_tag.substr(2))) {
            Fail();
        }
    }

    // Reads what is not an element: characters, a comment, a CDATA section or a processing instruction. Empty
    // before an element.
    std::string_view ReadText() {
        const std::size_t begin = position_;
        const auto section =
            std::find_if(std::begin(kSections), std::end(kSections),
                         [&](const Section& candidate) { return Rest().starts_with(candidate.opening); });
        if (section != std::end(kSections)) {
            SkipTo(section->closing);
        } else {
            position_ = xml_.find('<', position_);
            if (position_ == std::string_view::npos) {
                position_ = begin;
                Fail();
            }
        }
        return xml_.substr(begin, position_ - begin);
    }

    void SkipTo(std::string_view closing) {
        const std::size_t end = xml_.find(closing, position_);
        if (end == std::string_view::npos) {
            Fail();
        }
        position_ = end + closing.size();
    }

    // Reads from "<" to the ">" that ends the tag; a ">" in a quoted value does not end it.
    std::string_view ReadTag() {
        const std::size_t begin = position_;
        if (!Rest().starts_with('<')) {
            Fail();
        }
        char quote = '\0';
        for (; position_ < xml_.size(); ++position_) {
            const char c = xml_[position_];
            if (quote != '\0') {
                quote = c == quote ? '\0' : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                ++position_;
                return xml_.substr(begin, position_ - begin);
            }
        }
        Fail();
    }

    static std::string_view NameOf(std::string_view tag) {
        return tag.substr(0, tag.find_first_of(" \t\r\n/>"));
    }

    std::string_view Rest() const { return xml_.substr(position_); }

    struct Section {
        std::string_view opening;
        std::string_view closing;
    };
    static constexpr Section kSections[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

    std::string_view xml_;
    std::size_t position_ = 0;
};

void Write(const Element& element, std::size_t depth, std::string& out) {
    const std::string indent(2 * depth, ' ');
    out += indent;
    if (element.has_text || element.children.empty()) {
        out += element.source;
    } else {
        out += element.start_tag;
        out += '\n';
        for (const Element& child : element.children) {
            Write(child, depth + 1, out);
        }
        out += indent;
        out += element.end_tag;
    }
    out += '\n';
}

}  // namespace

std::string IndentXml(std::string_view xml) {
    Reader reader(xml);
    reader.SkipBlanks();
    const Element root = reader.ReadElement();
    reader.ExpectEnd();
    std::string out;
    Write(root, 0, out);
    return out;
}

}  // namespace host
