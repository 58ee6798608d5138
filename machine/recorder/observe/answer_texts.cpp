#include "machine/recorder/observe/answer_texts.h"

#include "machine/description/text.h"

#include <algorithm>

namespace recorder {

std::vector<std::wstring> TextsOf(const Bytes& bytes) {
    std::vector<std::wstring> texts = machine::TerminatedTexts(machine::WideText(bytes));
    texts.erase(std::find(texts.begin(), texts.end(), L""), texts.end());
    return texts;
}

std::vector<std::wstring> ListedNames(const Observations& observations, std::string_view call,
                                      std::wstring_view object) {
    std::vector<std::wstring> names;
    if (const Observation* best = observations.Best(call, object)) {
        for (const Part& part : best->answer.parts) {
            names.push_back(part.name);
        }
    }
    return names;
}

std::vector<std::wstring> AnsweredTexts(const Observations& observations, std::string_view call,
                                        std::wstring_view object) {
    const Bytes* bytes = observations.BytesOf(call, object);
    return bytes == nullptr ? std::vector<std::wstring>() : TextsOf(*bytes);
}

}  // namespace recorder
