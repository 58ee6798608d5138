#pragma once

#include <regex>
#include <string>

namespace support {

// The text of a document with every GPT disk's element "GUID" emptied: it holds an address, which differs
// from one capture to the next. All other bytes stay as they are.
inline std::string WithoutAddresses(const std::string& document) {
    static const std::regex address("<GUID>[0-9A-Fa-fx]+</GUID>");
    return document.find("<GUID>") == std::string::npos ? document
                                                        : std::regex_replace(document, address, "<GUID/>");
}

}  // namespace support
