#include "tools/orvane/redaction.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/leak_search.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/output_replacement.h"
#include "machine/recorder/redact/searched_texts.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace host {

void RequireNoLeak(const recorder::Replacements& replacements, const recorder::Observations& observations,
                   const std::string& description) {
    constexpr std::size_t kMostNamed = 10;
    std::vector<recorder::SearchedText> texts = recorder::SearchedTexts(observations);
    const auto described = recorder::SearchedTexts(nlohmann::ordered_json::parse(description));
    texts.insert(texts.end(), described.begin(), described.end());
    const std::vector<recorder::Leak> leaks = recorder::FindLeaks(replacements, texts);
    if (leaks.empty()) {
        return;
    }
    std::string message = "nothing is written: values that are private are still in others";
    for (std::size_t i = 0; i < std::min(leaks.size(), kMostNamed); ++i) {
        message += "\n  \"" + leaks[i].value + "\" in " + leaks[i].place;
    }
    if (leaks.size() > kMostNamed) {
        message += "\n  and in " + std::to_string(leaks.size() - kMostNamed) + " other places";
    }
    throw std::runtime_error(message);
}

recorder::ShownLine WithoutPrivateValues(const recorder::Replacements& replacements) {
    return [&replacements, replacement = recorder::OutputReplacement(replacements)](const std::string& line) {
        const std::string shown = replacement.InLine(line);
        const std::wstring searched = recorder::FoldedUnits(machine::Widen(shown));
        return recorder::FindLeaks(replacements, {{searched, "", false, true}}).empty()
                   ? shown
                   : "(a line with a private value)";
    };
}

std::string PrivateValuesInWords(const std::string& file, const recorder::Replacements& replacements) {
    return file + " holds " + std::to_string(replacements.texts().size()) + " names and " +
           std::to_string(replacements.guids().size() + replacements.ids().size()) +
           " ids; --redact replaces them";
}

}  // namespace host
