#pragma once

#include "documents/model/machine.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace documents {

// A document that cannot be read. what() is "PLACE: REASON" in UTF-8, one line; PLACE is "line 3, column 7"
// or the path of an element, "DiskDrives/x0/size". The caller puts the file's name before it.
class ReadError : public std::runtime_error {
public:
    ReadError(const std::string& place, const std::string& reason);

    const std::string& place() const { return place_; }
    const std::string& reason() const { return reason_; }

private:
    std::string place_;
    std::string reason_;
};

struct ReadOptions {
    // The code page of documents that do not say their encoding: one of CodePages(). None: UTF-8.
    std::optional<unsigned> code_page;
};

// Reads a document of any format from the bytes of a file. Throws ReadError if they are no document of the
// library, std::bad_alloc. Safe for any bytes.
Machine ReadDocument(std::string bytes, const ReadOptions& options);

}  // namespace documents
