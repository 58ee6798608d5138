#pragma once

#include "documents/model/machine.h"
#include "documents/text/read_error.h"

#include <optional>
#include <string>

namespace documents {

struct ReadOptions {
    // The code page of documents that do not say their encoding: one of CodePages(). None: UTF-8.
    std::optional<unsigned> code_page;
};

// Reads a document of any format from the bytes of a file. Throws ReadError if they are no document of the
// library, std::bad_alloc. Safe for any bytes.
Machine ReadDocument(std::string bytes, const ReadOptions& options);

}  // namespace documents
