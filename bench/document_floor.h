#pragma once

#include "support/xml_tree.h"

#include <msxml2.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// Rebuilds a document with the XML component alone.
class DocumentFloor {
public:
    explicit DocumentFloor(const XmlTree& root);

    // Builds the document's nodes with as few calls as possible and converts the document to the ANSI code
    // page. Returns the number of bytes. COM must be initialised.
    std::size_t Build() const;

private:
    struct Node {
        std::wstring name;
        std::wstring text;
        std::vector<Node> children;
    };

    static Node NodeOf(const XmlTree& tree);
    static void AppendChildren(IXMLDOMDocument* document, IXMLDOMNode* parent, const Node& node);

    Node root_;
};

}  // namespace bench
