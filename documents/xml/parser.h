#pragma once

#include "documents/xml/events.h"

#include <string>

namespace documents {

// Checks the XML (see scanner.h), then passes its elements to `events` with the parser of the platform:
// pugixml, or the SAX reader of Windows. `xml` is UTF-8 without a byte order mark, and is changed. Throws
// ReadError, what `events` throws, and std::runtime_error if the platform's parser cannot be created.
void ParseXml(std::string xml, XmlEvents& events);

}  // namespace documents
