#include "documents/reader/reader.h"

#include "documents/reader/document_reader.h"
#include "documents/text/encoding.h"
#include "documents/xml/parser.h"

#include <utility>

namespace documents {

Machine ReadDocument(std::string bytes, const ReadOptions& options) {
    DocumentReader reader;
    ParseXml(DecodeText(std::move(bytes), options.code_page), reader);
    return reader.Finish();
}

}  // namespace documents
