#pragma once

#include <string_view>

namespace documents {

// Receives the elements of a document in their order. All texts are UTF-8 with references resolved, and live
// only during the call.
class XmlEvents {
public:
    virtual ~XmlEvents() = default;

    // An element that has child elements begins and ends.
    virtual void Open(std::string_view name) = 0;
    virtual void Close() = 0;
    // An element without child elements, with its text (white space included; every line end is a line feed).
    virtual void Value(std::string_view name, std::string_view text) = 0;
};

}  // namespace documents
