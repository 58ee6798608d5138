#include "machine/recorder/redact/name_parts.h"

#include "machine/description/text.h"

namespace recorder {
namespace {

constexpr std::size_t kGuidSize = 38;  // with braces

bool IsGuid(std::wstring_view text) {
    return text.size() == kGuidSize && text.front() == L'{' && machine::ParseGuid(machine::Narrow(text));
}

}  // namespace

std::vector<NamePart> PartsOf(std::wstring_view name, std::wstring_view separators) {
    std::vector<NamePart> parts;
    const auto add = [&](std::wstring_view text, NamePart::Kind kind) {
        const bool goes_on =
            kind == NamePart::Kind::kText && !parts.empty() && parts.back().kind == NamePart::Kind::kText;
        if (goes_on) {
            parts.back().text += text;
        } else {
            parts.push_back({std::wstring(text), kind});
        }
    };
    while (!name.empty()) {
        const bool guid = IsGuid(name.substr(0, kGuidSize));
        const bool separator = separators.find(name.front()) != std::wstring_view::npos;
        const std::size_t size = guid ? kGuidSize : 1;
        add(name.substr(0, size), guid        ? NamePart::Kind::kGuid
                                  : separator ? NamePart::Kind::kSeparator
                                              : NamePart::Kind::kText);
        name.remove_prefix(size);
    }
    return parts;
}

}  // namespace recorder
