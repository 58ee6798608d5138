#include "machine/recorder/redact/map_text.h"

#include "machine/description/kinds.h"
#include "machine/description/text.h"

#include <utility>

namespace recorder {
namespace {

namespace rows = machine::rows;
using rows::Json;

Json Pair(Json from, Json to) {
    Json pair = Json::object();
    pair["from"] = std::move(from);
    pair["to"] = std::move(to);
    return pair;
}

Json TextJson(const std::wstring& text) {
    return rows::Text().write(text, rows::Place{});
}

}  // namespace

std::string MapText(const Replacements& replacements) {
    Json map = {{"texts", Json::array()}, {"guids", Json::array()}, {"ids", Json::array()}};
    for (const auto& [original, made] : replacements.texts()) {
        map["texts"].push_back(Pair(TextJson(original), TextJson(made)));
    }
    for (const auto& [original, made] : replacements.guids()) {
        map["guids"].push_back(Pair(machine::GuidText(original), machine::GuidText(made)));
    }
    for (const auto& [original, made] : replacements.ids()) {
        map["ids"].push_back(Pair(original, made));
    }
    constexpr int kIndentation = 2;
    return map.dump(kIndentation) + "\n";
}

}  // namespace recorder
