#include "documents/commands/json_output.h"

#include "documents/text/utf8.h"

namespace documents {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kSchema = 1;

}  // namespace

std::string JsonText(const Json& json, bool indented) {
    constexpr int kIndent = 2;
    return EscapedJson(json.dump(indented ? kIndent : -1, ' ', false, Json::error_handler_t::replace)) + '\n';
}

void DocumentObjects::Add(const Json& object) {
    if (!lines_) {
        documents_.push_back(object);
        return;
    }
    Json line = {{"schema", kSchema}};
    line.update(object);
    Print(terminal_, JsonText(line, false));
}

void DocumentObjects::Finish() {
    if (!lines_) {
        Print(terminal_, JsonText({{"schema", kSchema}, {"documents", std::move(documents_)}}, true));
    }
}

}  // namespace documents
