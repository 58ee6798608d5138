#include "documents/reader/reader.h"

#include "documents/reader/document_reader.h"
#include "documents/text/encoding.h"
#include "documents/xml/parser.h"

#include <string>
#include <utility>

namespace documents {

Machine ReadDocument(std::string bytes, const ReadOptions& options) {
    DocumentReader reader;
    // A statement of its own: the bytes of another encoding are freed at its end.
    std::string text = DecodeText(std::move(bytes), options.code_page);
    ParseXml(std::move(text), reader);
    return reader.Finish();
}

}  // namespace documents
