#pragma once

#include "common/xml/ms_xml.h"
#include "support/text.h"

#include <objbase.h>

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// What an object writes into a document, as a list that a test can compare.
namespace captured {

// COM on this thread for the life of the object.
class ComScope {
public:
    ComScope() {
        if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
            throw std::runtime_error("no COM on this thread");
        }
    }
    ~ComScope() { CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

inline std::string Unescaped(std::string text) {
    constexpr std::string_view kEntities[][2] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}};
    for (const auto& [entity, character] : kEntities) {
        for (std::size_t at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1)) {
            text.replace(at, entity.size(), character);
        }
    }
    return text;
}

// Walks the text of one element; attributes, comments and the like do not occur.
class ElementReader {
public:
    explicit ElementReader(std::string_view xml) : xml_(xml) {}

    // "Name=text" of an element without children; of one with children "Name", then its children's with
    // "Name/".
    std::vector<std::string> ReadRoot() {
        std::vector<std::string> elements;
        const bool empty = ReadOpeningTag().empty();
        if (!empty) {
            ReadContent("", elements);
        }
        return elements;
    }

private:
    // Leaves the reader behind the tag; empty for an element that ends in itself, whose name is kept.
    std::string ReadOpeningTag() {
        const std::size_t end = xml_.find('>', at_);
        if (end == std::string_view::npos || xml_.at(at_) != '<') {
            throw std::runtime_error("no element at " + std::string(xml_.substr(at_)));
        }
        const bool closed = xml_[end - 1] == '/';
        name_ = std::string(xml_.substr(at_ + 1, end - at_ - (closed ? 2 : 1)));
        at_ = end + 1;
        return closed ? std::string() : name_;
    }

    // Up to and with the closing tag; returns the text.
    std::string ReadContent(const std::string& path, std::vector<std::string>& elements) {
        std::string text;
        for (;;) {
            const std::size_t tag = xml_.find('<', at_);
            text += xml_.substr(at_, tag - at_);
            at_ = tag;
            if (xml_.substr(at_, 2) == "</") {
                at_ = xml_.find('>', at_) + 1;
                return text;
            }
            const std::string opened = ReadOpeningTag();
            const std::string own = path + name_;
            const std::size_t position = elements.size();
            const std::string content = opened.empty() ? std::string() : ReadContent(own + "/", elements);
            const bool has_children = elements.size() != position;
            elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(position),
                            has_children ? own : own + "=" + Unescaped(content));
        }
    }

    std::string_view xml_;
    std::size_t at_ = 0;
    std::string name_;
};

// The elements that `write` appends to a node, in the order of the document.
inline std::vector<std::string> Elements(const std::function<void(CMSXmlNode&)>& write) {
    const ComScope com;
    CMSXmlDoc document;
    if (!document.LoadXML("<root></root>")) {
        throw std::runtime_error("no document");
    }
    CMSXmlNode root = document.GetRoot();
    write(root);
    const std::string xml = support::Utf8(std::wstring(TextOf(root.GetXML())));
    return ElementReader(xml).ReadRoot();
}

}  // namespace captured
