#include "machine/recorder/redact/leak_search.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/everyday_words.h"
#include "machine/recorder/redact/known_names.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/name_parts.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

namespace recorder {
namespace {

constexpr std::size_t kLong = 6;      // units of a text that is found anywhere
constexpr std::size_t kShortest = 4;  // units of anything that is found anywhere: the bytes of an id

std::wstring UnitsOf(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

std::wstring Hexadecimal(const std::wstring& bytes) {
    constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
    std::wstring text;
    for (const wchar_t byte : bytes) {
        text += kDigits[byte >> 4 & 0xF];
        text += kDigits[byte & 0xF];
    }
    return text;
}

// In the code page of the system.
std::wstring EightBit(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    std::string narrow(text.size() * 4, 0);
    const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), size, narrow.data(),
                                           static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(length));
    return UnitsOf(narrow.data(), narrow.size());
}

std::wstring Trimmed(const std::wstring& text) {
    const std::size_t first = text.find_first_not_of(L' ');
    return first == std::wstring::npos ? text : text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

// What is looked for: forms of private values, with the values for the report.
class Search {
public:
    explicit Search(const Replacements& replacements) {
        for (const auto& pair : replacements.texts()) {
            AddText(Trimmed(pair.original));
        }
        for (const std::wstring& whole : replacements.wholes()) {
            AddText(whole);
        }
        for (const auto& pair : replacements.guids()) {
            AddGuid(pair);
        }
        for (const auto& [id, made] : replacements.ids()) {
            AddId(id);
        }
        for (const auto& sought : anywhere_) {
            by_start_.emplace(std::wstring_view(sought.first).substr(0, kShortest), &sought);
        }
    }

    void In(const SearchedText& text, std::vector<Leak>& leaks) const {
        FindAnywhere(text, leaks);
        if (!text.word && text.readable) {
            FindParts(text, leaks);
        }
    }

private:
    void AddText(const std::wstring& text) {
        const std::string value = machine::Narrow(text);
        if (text.size() < kLong || IsEveryday(text)) {
            parts_.emplace(FoldedUnits(text), value);
            return;
        }
        const std::string utf8 = machine::Narrow(text);
        const std::wstring bytes = UnitsOf(text.data(), text.size() * sizeof(wchar_t));
        for (const std::wstring& eight_bit : {UnitsOf(utf8.data(), utf8.size()), EightBit(text)}) {
            AddAnywhere(eight_bit, value);
            AddAnywhere(Hexadecimal(eight_bit), value);
        }
        AddAnywhere(text, value);
        AddAnywhere(Hexadecimal(bytes), value);
    }

    void AddGuid(const Replacements::GuidPair& pair) {
        if (IsEqualGUID(pair.original, pair.made)) {
            return;  // the signature of a disk that stays, and an offset
        }
        const std::string text = machine::GuidText(pair.original);
        const std::wstring bytes = UnitsOf(&pair.original, sizeof(GUID));
        AddAnywhere(machine::Widen(text.substr(1, text.size() - 2)), text);
        AddAnywhere(bytes, text);
        AddAnywhere(Hexadecimal(bytes), text);
    }

    // Small numbers, and bytes with a zero among them, are in many values by chance.
    void AddId(std::uint32_t id) {
        constexpr std::uint32_t kLarge = 0x01000000;
        std::array<char, 12> digits{};
        std::snprintf(digits.data(), digits.size(), "%08X", static_cast<unsigned>(id));
        const std::wstring bytes = UnitsOf(&id, sizeof(id));
        if (id < kLarge) {
            return;
        }
        AddAnywhere(machine::Widen(digits.data()), digits.data());
        AddAnywhere(std::to_wstring(id), digits.data());
        if (bytes.find(L'\0') == std::wstring::npos) {
            AddAnywhere(bytes, digits.data());
        }
    }

    void AddAnywhere(const std::wstring& form, const std::string& value) {
        if (form.size() >= kShortest) {
            anywhere_.emplace(FoldedUnits(form), value);
        }
    }

    void FindAnywhere(const SearchedText& text, std::vector<Leak>& leaks) const {
        const std::wstring_view all = text.text;
        for (std::size_t i = 0; i + kShortest <= all.size(); ++i) {
            const auto [first, last] = by_start_.equal_range(all.substr(i, kShortest));
            for (auto found = first; found != last; ++found) {
                if (all.substr(i).starts_with(found->second->first)) {
                    leaks.push_back({found->second->second, text.place});
                }
            }
        }
    }

    void FindParts(const SearchedText& text, std::vector<Leak>& leaks) const {
        const auto find = [&](const std::wstring& part) {
            const auto found = parts_.find(part);
            if (found != parts_.end()) {
                leaks.push_back({found->second, text.place});
            }
        };
        if (!IsKnownDeviceName(text.text)) {
            find(Trimmed(text.text));
        }
        const std::vector<NamePart> parts = PartsOf(text.text, {L"\\/|@\0", 5});
        for (const NamePart& part : parts) {
            const bool known = IsKnownFolder(part.text) || IsKnownDeviceName(part.text);
            if (parts.size() > 1 && !known) {
                find(Trimmed(part.text));
            }
        }
    }

    std::map<std::wstring, std::string> anywhere_;  // by folded forms
    std::unordered_multimap<std::wstring_view, const std::pair<const std::wstring, std::string>*> by_start_;
    std::map<std::wstring, std::string> parts_;
};

}  // namespace

std::vector<Leak> FindLeaks(const Replacements& replacements, const std::vector<SearchedText>& texts) {
    const Search search(replacements);
    std::vector<Leak> leaks;
    for (const SearchedText& text : texts) {
        search.In(text, leaks);
    }
    // A value is often found in several forms of the same place.
    std::set<std::pair<std::string, std::string>> known;
    std::erase_if(leaks, [&](const Leak& leak) { return !known.emplace(leak.value, leak.place).second; });
    return leaks;
}

}  // namespace recorder
