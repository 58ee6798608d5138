#include "machine/recorder/redact/output_replacement.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/letters.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

namespace recorder {
namespace {

constexpr std::size_t kGuidSize = 36;  // without braces

std::wstring Hexadecimal(std::uint32_t number) {
    std::array<char, 12> digits{};
    std::snprintf(digits.data(), digits.size(), "0x%x", static_cast<unsigned>(number));
    return machine::Widen(digits.data());
}

std::wstring GuidDigits(const GUID& guid) {
    return machine::Widen(machine::GuidText(guid)).substr(1, kGuidSize);
}

std::string Changed(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

bool IsPartOfWord(wchar_t unit) {
    const wchar_t folded = FoldedUnit(unit);
    return (folded >= L'0' && folded <= L'9') || (folded >= L'A' && folded <= L'Z');
}

}  // namespace

OutputReplacement::OutputReplacement(const Replacements& replacements) {
    for (const auto& [original, made] : replacements.texts()) {
        texts_[FoldedUnits(original)] = FoldedUnits(made);
    }
    for (const auto& [original, made] : replacements.guids()) {
        AddExactly(GuidDigits(original), GuidDigits(made));
        AddNumber(static_cast<std::uint32_t>(original.Data1), static_cast<std::uint32_t>(made.Data1));
    }
    for (const auto& [original, made] : replacements.ids()) {
        AddNumber(original, made);
    }
}

std::string OutputReplacement::InLine(const std::string& line) const {
    const bool element =
        line.find_first_not_of(' ') == line.find('<') && line.find("</") != std::string::npos;
    const std::size_t colon = line.find(": ");
    const bool named =
        std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(std::min(colon, line.size())),
                    [](char c) { return c == ' ' || IsPartOfWord(static_cast<unsigned char>(c)); });
    const std::size_t name = element ? line.find('>') : named ? colon : std::string::npos;
    const std::size_t start = name == std::string::npos ? 0 : name + 1;
    const std::size_t end = element ? line.rfind("</") : line.size();
    const std::string value = Changed(line.substr(start, end - start), "&amp;", "&");
    return line.substr(0, start) + (element ? Changed(InText(value), "&", "&amp;") : InText(value)) +
           line.substr(end);
}

std::string OutputReplacement::InText(const std::string& utf8) const {
    const std::wstring text = machine::Widen(utf8);
    std::wstring replaced;
    for (std::size_t start = 0; start < text.size();) {
        std::wstring made;
        const bool word = start == 0 || !IsPartOfWord(text[start - 1]);
        const std::size_t size = word ? FindLongest(text, start, made) : 0;
        replaced += size == 0 ? text.substr(start, 1) : made;
        start += std::max<std::size_t>(size, 1);
    }
    return machine::Narrow(replaced);
}

void OutputReplacement::AddExactly(const std::wstring& from, const std::wstring& to) {
    exact_[from] = to;
    exact_[FoldedUnits(from)] = FoldedUnits(to);
}

void OutputReplacement::AddNumber(std::uint32_t from, std::uint32_t to) {
    AddExactly(std::to_wstring(from), std::to_wstring(to));
    AddExactly(Hexadecimal(from), Hexadecimal(to));
}

std::size_t OutputReplacement::FindLongest(const std::wstring& text, std::size_t start,
                                           std::wstring& made) const {
    std::size_t size = 0;
    const auto find = [&](const std::wstring& form, const std::map<std::wstring, std::wstring>& pairs,
                          bool folded) {
        for (const auto& [from, to] : pairs) {
            const std::size_t end = start + from.size();
            if (from.size() > size && form.compare(start, from.size(), from) == 0 &&
                (end >= text.size() || !IsPartOfWord(text[end]))) {
                size = from.size();
                made = folded ? WithCaseOf(text.substr(start, size), to) : to;
            }
        }
    };
    find(FoldedUnits(text), texts_, true);
    find(text, exact_, false);
    return size;
}

}  // namespace recorder
