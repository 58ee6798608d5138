#include "machine/recorder/redact/everyday_words.h"

#include "machine/recorder/redact/letters.h"

#include <algorithm>
#include <string>
#include <unordered_set>

namespace recorder {
namespace {

// One word a line.
constexpr std::string_view kLists[] = {
#include "machine/recorder/redact/everyday_words.inc"
};

std::unordered_set<std::string_view> AllWords() {
    std::unordered_set<std::string_view> words;
    for (std::string_view list : kLists) {
        while (!list.empty()) {
            const std::size_t end = std::min(list.find('\n'), list.size());
            if (end > 0) {
                words.insert(list.substr(0, end));
            }
            list.remove_prefix(std::min(end + 1, list.size()));
        }
    }
    return words;
}

bool IsListed(const std::string& word) {
    static const std::unordered_set<std::string_view> words = AllWords();
    return words.contains(word);
}

std::wstring_view WithoutLastDigits(std::wstring_view text) {
    constexpr std::size_t kMostDigits = 3;
    const std::size_t end = text.find_last_not_of(L"0123456789") + 1;
    return text.size() - end <= kMostDigits ? text.substr(0, end) : text;
}

// Empty if the text has other units than ASCII letters, which are made small.
std::string WordOf(std::wstring_view text) {
    std::string word;
    for (const wchar_t unit : text) {
        const wchar_t folded = FoldedUnit(unit);
        if (folded < L'A' || folded > L'Z') {
            return {};
        }
        word += static_cast<char>(folded - L'A' + L'a');
    }
    return word;
}

}  // namespace

bool IsEveryday(std::wstring_view text) {
    constexpr std::size_t kFewLetters = 3;
    bool any_listed = false;
    text = WithoutLastDigits(text);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(L" -_"), text.size());
        const std::string word = WordOf(text.substr(0, end));
        const bool listed = IsListed(word);
        if (!listed && (word.size() != end || end > kFewLetters)) {
            return false;
        }
        any_listed = any_listed || listed;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return any_listed;
}

}  // namespace recorder
