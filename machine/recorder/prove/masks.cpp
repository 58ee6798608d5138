#include "machine/recorder/prove/masks.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>

namespace recorder {

namespace {

// The elements of formats 1 and 2 that name a volume by the GUID made for it.
constexpr std::string_view kVolumeGuids[] = {
#include "machine/recorder/prove/volume_guids.inc"
};
constexpr std::string_view kAddress = "GUID";

constexpr std::string_view kHexadecimal = "0123456789ABCDEFabcdef";
constexpr std::string_view kGuidPattern = "{00000000-0000-0000-0000-000000000000}";

// One line of the document, if it is a whole element without children: `<name>text</name>` or `<name/>`.
struct Leaf {
    std::size_t indent = 0;
    std::string name;
    std::string text;
};

std::optional<Leaf> LeafOf(std::string_view line) {
    Leaf leaf;
    leaf.indent = std::min(line.find_first_not_of(' '), line.size());
    line.remove_prefix(leaf.indent);
    if (!line.starts_with('<') || line.starts_with("</")) {
        return std::nullopt;
    }
    const std::size_t end = std::min(line.find_first_of("/>"), line.size());
    leaf.name = line.substr(1, end - 1);
    line.remove_prefix(end);
    if (line == "/>") {
        return leaf;
    }
    const std::string end_tag = "</" + leaf.name + ">";
    if (!line.starts_with('>') || !line.ends_with(end_tag)) {
        return std::nullopt;
    }
    leaf.text = line.substr(1, line.size() - 1 - end_tag.size());
    return leaf;
}

bool IsNothing(const std::string& text) {
    return text.find_first_of("123456789ABCDEFabcdef") == std::string::npos;
}

bool IsGuid(const std::string& text) {
    return std::equal(text.begin(), text.end(), kGuidPattern.begin(), kGuidPattern.end(),
                      [](char character, char pattern) {
                          return pattern == '0' ? kHexadecimal.find(character) != std::string_view::npos
                                                : character == pattern;
                      });
}

bool IsAddress(const std::string& text) {
    return !text.empty() && text.find_first_not_of(kHexadecimal) == std::string::npos;
}

// Masks the leaves of one document in their order.
class Mask {
public:
    std::string Text(const Leaf& leaf) {
        const bool names_volume =
            std::find(std::begin(kVolumeGuids), std::end(kVolumeGuids), leaf.name) != std::end(kVolumeGuids);
        if (names_volume && IsGuid(leaf.text) && !IsNothing(leaf.text)) {
            const auto [entry, added] = made_.try_emplace(leaf.text, made_.size() + 1);
            return "generated " + std::to_string(entry->second);
        }
        if (leaf.name == kAddress && IsAddress(leaf.text) && !IsNothing(leaf.text)) {
            return "address";
        }
        return leaf.text;
    }

private:
    std::map<std::string, std::size_t> made_;
};

}  // namespace

std::string Masked(const std::string& document) {
    Mask mask;
    std::string masked;
    std::string_view rest = document;
    while (!rest.empty()) {
        const std::size_t length = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, length);
        rest.remove_prefix(std::min(length + 1, rest.size()));
        if (const std::optional<Leaf> leaf = LeafOf(line)) {
            masked += std::string(leaf->indent, ' ') + "<" + leaf->name + ">" + mask.Text(*leaf) + "</" +
                      leaf->name + ">\n";
        } else {
            masked.append(line).append("\n");
        }
    }
    return masked;
}

}  // namespace recorder
