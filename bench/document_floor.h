#pragma once

#include "support/xml_tree.h"

#include <msxml2.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// A document, to be built again.
class DocumentFloor {
public:
    explicit DocumentFloor(const XmlTree& root);

    // Builds the document's nodes with the XML component, the shortest way, and turns it into bytes of the
    // code page. Returns how many. COM must be initialised.
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
