#pragma once

#include <regex>
#include <string>

namespace support {

// The document with the element "GUID" of every GPT disk emptied. It contains an address, which differs from
// capture to capture. All other bytes are unchanged.
inline std::string WithoutAddresses(const std::string& document) {
    static const std::regex address("<GUID>[0-9A-Fa-fx]+</GUID>");
    return document.find("<GUID>") == std::string::npos ? document
                                                        : std::regex_replace(document, address, "<GUID/>");
}

}  // namespace support
