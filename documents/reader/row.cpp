#include "documents/reader/row.h"

#include "documents/text/read_error.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace documents {

namespace {

// Long enough to recognise a value by.
constexpr std::size_t kShownLength = 40;
// The values of an element are kept until its end, beside the parser's.
constexpr std::size_t kMostText = std::size_t{16} << 20U;

std::string Shown(std::string_view text) {
    if (text.size() <= kShownLength) {
        return "\"" + std::string(text) + "\"";
    }
    std::size_t length = kShownLength;
    // Not in the middle of a character.
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        --length;
    }
    return "\"" + std::string(text.substr(0, length)) + "...\"";
}

bool IsHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

constexpr std::string_view kZeroGuid = "{00000000-0000-0000-0000-000000000000}";

bool IsGuid(std::string_view text) {
    return text.size() == kZeroGuid.size() &&
           std::equal(text.begin(), text.end(), kZeroGuid.begin(),
                      [](char c, char form) { return form == '0' ? IsHexadecimal(c) : c == form; });
}

// The number in "MountPoint12" behind "MountPoint", as std::to_string writes it.
std::optional<std::size_t> NumberBehind(std::string_view name, std::string_view text) {
    if (!text.starts_with(name)) {
        return std::nullopt;
    }
    const std::string_view digits = text.substr(name.size());
    std::size_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number);
    const bool padded = digits.size() > 1 && digits.starts_with('0');
    return error == std::errc() && last == end && !padded ? std::optional(number) : std::nullopt;
}

}  // namespace

void Row::Clear(std::string_view parent, std::string_view name) {
    path_ = parent;
    path_ += parent.empty() ? "" : "/";
    path_ += name;
    texts_.clear();
    fields_.clear();
    next_ = 0;
}

void Row::Add(std::string_view name, std::string_view text) {
    const std::size_t begin = texts_.size();
    if (begin + name.size() + text.size() > kMostText) {
        Refuse(name, "the element that it is in has more than 16 MiB of values");
    }
    texts_ += name;
    texts_ += text;
    fields_.push_back({begin, begin + name.size(), texts_.size(), false});
}

std::string_view Row::NameAt(std::size_t index) const {
    const Field& field = fields_[index];
    return std::string_view(texts_).substr(field.name, field.text - field.name);
}

std::string_view Row::TextAt(std::size_t index) const {
    return TextOf(fields_[index]);
}

std::string_view Row::TextOf(const Field& field) const {
    return std::string_view(texts_).substr(field.text, field.end - field.text);
}

const Row::Field* Row::Find(std::string_view name) {
    for (std::size_t step = 0; step < fields_.size(); ++step) {
        const std::size_t index = (next_ + step) % fields_.size();
        if (!fields_[index].read && NameAt(index) == name) {
            fields_[index].read = true;
            next_ = index + 1;
            return &fields_[index];
        }
    }
    return nullptr;
}

bool Row::Has(std::string_view name) const {
    for (std::size_t step = 0; step < fields_.size(); ++step) {
        const std::size_t index = (next_ + step) % fields_.size();
        if (!fields_[index].read && NameAt(index) == name) {
            return true;
        }
    }
    return false;
}

void Row::ReadTheRest() {
    for (Field& field : fields_) {
        field.read = true;
    }
}

std::string_view Row::Peek(std::string_view name) const {
    for (std::size_t index = 0; index < fields_.size(); ++index) {
        if (NameAt(index) == name) {
            return TextAt(index);
        }
    }
    return {};
}

void Row::Refuse(std::string_view name, const std::string& reason) const {
    throw ReadError(path_.empty() ? std::string(name) : path_ + "/" + std::string(name), reason);
}

std::string_view Row::Text(std::string_view name) {
    const Field* const field = Find(name);
    if (field == nullptr) {
        Refuse(name, "the element is missing");
    }
    return TextOf(*field);
}

template <class Number>
Number Row::NumberOf(std::string_view name, Number smallest, Number largest) {
    const std::string_view text = Text(name);
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range ||
        (error == std::errc() && last == end && (number < smallest || number > largest))) {
        Refuse(name, Shown(text) + " is out of range");
    }
    if (error != std::errc() || last != end) {
        Refuse(name, Shown(text) + " is not a number");
    }
    return number;
}

std::uint64_t Row::Unsigned(std::string_view name, std::uint64_t largest) {
    return NumberOf<std::uint64_t>(name, 0, largest);
}

std::uint32_t Row::Unsigned32(std::string_view name) {
    return static_cast<std::uint32_t>(Unsigned(name, std::numeric_limits<std::uint32_t>::max()));
}

std::int64_t Row::Signed(std::string_view name) {
    return NumberOf<std::int64_t>(name, std::numeric_limits<std::int64_t>::min(),
                                  std::numeric_limits<std::int64_t>::max());
}

std::uint64_t Row::SizeWrittenSigned(std::string_view name) {
    return static_cast<std::uint64_t>(Signed(name));
}

bool Row::Truth(std::string_view name, std::string_view yes, std::string_view no) {
    const std::string_view text = Text(name);
    if (text != yes && text != no) {
        Refuse(name, Shown(text) + " is neither " + std::string(yes) + " nor " + std::string(no));
    }
    return text == yes;
}

// The values may be in any order, so each is put in its place first.
std::vector<std::string> Row::Numbered(std::string_view name, std::size_t first) {
    std::vector<Field*> by_number(fields_.size(), nullptr);
    for (std::size_t index = 0; index < fields_.size(); ++index) {
        const std::optional<std::size_t> number = NumberBehind(name, NameAt(index));
        const bool counts = number && *number >= first && *number - first < by_number.size();
        if (counts && by_number[*number - first] == nullptr) {
            by_number[*number - first] = &fields_[index];
        }
    }
    const auto end = std::find(by_number.begin(), by_number.end(), nullptr);
    std::vector<std::string> texts;
    texts.reserve(static_cast<std::size_t>(end - by_number.begin()));
    for (auto field = by_number.begin(); field != end; ++field) {
        (*field)->read = true;
        texts.emplace_back(TextOf(**field));
    }
    return texts;
}

std::optional<std::string> Row::Guid(std::string_view name) {
    const std::string_view text = Text(name);
    if (!IsGuid(text)) {
        Refuse(name, Shown(text) + " is not a GUID in braces");
    }
    if (text == kZeroGuid) {
        return std::nullopt;
    }
    std::string guid(text);
    std::transform(guid.begin(), guid.end(), guid.begin(),
                   [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
    return guid;
}

std::optional<std::string> NotEmpty(std::string_view text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

}  // namespace documents
