#pragma once

#include "support/written_document.h"

#include <string>
#include <utility>
#include <vector>

// The elements that an object writes into a document, as a list that a test can compare.
namespace captured {

// Appends "Name=text" for each child. For a child with children, appends "Name" and then its children,
// prefixed with "Name/".
inline void AppendChildren(std::vector<std::string>& elements, const XmlTree& parent,
                           const std::string& path) {
    for (const XmlTree& child : parent.children) {
        const std::string name = path + child.name;
        elements.push_back(child.children.empty() ? name + "=" + child.text : name);
        AppendChildren(elements, child, name + "/");
    }
}

// The elements that `write` appends to a node, in the order of the document.
template <class Write>
std::vector<std::string> Elements(Write&& write) {
    std::vector<std::string> elements;
    AppendChildren(elements, Written(std::forward<Write>(write)), "");
    return elements;
}

}  // namespace captured
