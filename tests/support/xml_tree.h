#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A document in the form that tests compare: elements with either a text or children, and no attributes.
// Parses only what the DOM writes, and throws std::invalid_argument for anything else.
struct XmlTree {
    std::string name;
    std::string text;
    std::vector<XmlTree> children;

    bool operator==(const XmlTree&) const = default;

    static XmlTree Of(std::string_view xml);

    // The only child with that name. Throws std::out_of_range if there is none or more than one.
    const XmlTree& Child(std::string_view wanted) const {
        if (std::count_if(children.begin(), children.end(), Named{wanted}) != 1) {
            throw std::out_of_range(name + " has none or several of " + std::string(wanted));
        }
        return *std::find_if(children.begin(), children.end(), Named{wanted});
    }
    bool Has(std::string_view wanted) const {
        return std::any_of(children.begin(), children.end(), Named{wanted});
    }

private:
    class Reader;

    struct Named {
        std::string_view wanted;
        bool operator()(const XmlTree& child) const { return child.name == wanted; }
    };
};

// A text element.
inline XmlTree Leaf(std::string name, std::string text) {
    return {std::move(name), std::move(text), {}};
}

// An element with children.
inline XmlTree Branch(std::string name, std::vector<XmlTree> children) {
    return {std::move(name), {}, std::move(children)};
}

class XmlTree::Reader {
public:
    explicit Reader(std::string_view xml) : xml_(xml) {}

    XmlTree Element() {
        Expect("<");
        XmlTree element;
        element.name = Take("/>");
        if (Skip("/>")) {
            return element;
        }
        Expect(">");
        while (!Skip("</")) {
            if (Rest().starts_with('<')) {
                element.children.push_back(Element());
            } else {
                element.text += Unescaped(Take("<"));
            }
        }
        Expect(element.name);
        Expect(">");
        if (!element.children.empty()) {
            if (element.text.find_first_not_of("\r\n\t ") != std::string::npos) {
                Fail("text beside children");
            }
            element.text.clear();
        }
        return element;
    }

    void End() const {
        if (Rest().find_first_not_of("\r\n") != std::string_view::npos) {
            Fail("text after the document");
        }
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const {
        throw std::invalid_argument("byte " + std::to_string(position_) + ": " + reason);
    }

    std::string_view Rest() const { return xml_.substr(position_); }

    bool Skip(std::string_view text) {
        const bool there = Rest().starts_with(text);
        position_ += there ? text.size() : 0;
        return there;
    }

    void Expect(std::string_view text) {
        if (!Skip(text)) {
            Fail("no " + std::string(text));
        }
    }

    std::string Take(std::string_view ends) {
        const std::size_t length = Rest().find_first_of(ends);
        if (length == std::string_view::npos || length == 0) {
            Fail("unexpected end");
        }
        const std::string taken(Rest().substr(0, length));
        position_ += length;
        return taken;
    }

    // Replaces references and normalises line ends, as a parser does.
    std::string Unescaped(std::string_view text) const {
        static constexpr std::pair<std::string_view, std::string_view> kReplaced[] = {
            {"&lt;", "<"},   {"&gt;", ">"},   {"&amp;", "&"}, {"&quot;", "\""},
            {"&apos;", "'"}, {"&#13;", "\r"}, {"\r\n", "\n"}};
        std::string result;
        while (!text.empty()) {
            const auto replaced = std::find_if(std::begin(kReplaced), std::end(kReplaced),
                                               [&](const auto& row) { return text.starts_with(row.first); });
            const bool found = replaced != std::end(kReplaced);
            if (!found && text.front() == '&') {
                Fail("unknown reference");
            }
            result += found ? replaced->second : text.substr(0, 1);
            text.remove_prefix(found ? replaced->first.size() : 1);
        }
        return result;
    }

    std::string_view xml_;
    std::size_t position_ = 0;
};

inline XmlTree XmlTree::Of(std::string_view xml) {
    Reader reader(xml);
    XmlTree root = reader.Element();
    reader.End();
    return root;
}

// The tree as indented lines, `name: text`.
inline std::string Lines(const XmlTree& element, std::size_t depth = 0) {
    std::string lines = std::string(2 * depth, ' ') + element.name + ": " + element.text + "\n";
    for (const XmlTree& child : element.children) {
        lines += Lines(child, depth + 1);
    }
    return lines;
}

inline void PrintTo(const XmlTree& element, std::ostream* out) {
    *out << '\n' << Lines(element);
}
