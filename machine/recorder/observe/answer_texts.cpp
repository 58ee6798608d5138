#include "machine/recorder/observe/answer_texts.h"

#include "machine/description/text.h"

#include <algorithm>
#include <cstddef>

namespace recorder {

std::vector<std::wstring> TextsOf(const Bytes& bytes) {
    std::vector<std::wstring> texts;
    const std::wstring all = machine::WideText(bytes);
    std::size_t first = 0;
    while (first < all.size() && all[first] != L'\0') {
        const std::size_t end = std::min(all.find(L'\0', first), all.size());
        texts.push_back(all.substr(first, end - first));
        first = end + 1;
    }
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
    const Observation* best = observations.Best(call, object);
    return best != nullptr && best->answer.succeeded() ? TextsOf(best->answer.bytes)
                                                       : std::vector<std::wstring>();
}

}  // namespace recorder
