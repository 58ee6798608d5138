#pragma once

#include "support/xml_tree.h"

#include <string>

namespace bench {

/// Builds the document's nodes with the XML component, the shortest way, and turns it into bytes of the code
/// page. Returns how many. COM must be initialised.
std::size_t BuildDocument(const XmlTree& root);

}  // namespace bench
