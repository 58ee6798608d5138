#include "machine/description/json_cursor.h"

#include "machine/description/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace machine {
namespace {

struct Unit {
    const char* name;
    std::uint64_t bytes;
};

constexpr Unit kUnits[] = {
    {"B", 1},
    {"KiB", 1ULL << 10},
    {"MiB", 1ULL << 20},
    {"GiB", 1ULL << 30},
    {"TiB", 1ULL << 40},
    {"KB", 1000ULL},
    {"MB", 1000ULL * 1000},
    {"GB", 1000ULL * 1000 * 1000},
    {"TB", 1000ULL * 1000 * 1000 * 1000},
};

// The system uses signed 64-bit byte counts.
constexpr std::uint64_t kMostBytes = INT64_MAX;

// Escapes a key for a JSON pointer.
std::string Escaped(const std::string& key) {
    std::string escaped;
    for (const char c : key) {
        escaped += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    }
    return escaped;
}

std::optional<std::uint64_t> Parsed(const char* first, const char* last, int base) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(first, last, number, base);
    return error == std::errc() && end == last && first != last ? std::optional(number) : std::nullopt;
}

std::optional<std::uint64_t> Hexadecimal(const std::string& text) {
    return text.compare(0, 2, "0x") == 0 ? Parsed(text.data() + 2, text.data() + text.size(), 16)
                                         : std::nullopt;
}

}  // namespace

JsonCursor::JsonCursor(const nlohmann::json& value, const std::string& file, std::string path)
    : value_(&value), file_(&file), path_(std::move(path)) {}

void JsonCursor::Refuse(const std::string& reason) const {
    throw DescriptionError(*file_, path_, reason);
}

bool JsonCursor::is_null() const noexcept {
    return value_->is_null();
}

bool JsonCursor::is_text() const noexcept {
    return value_->is_string() || is_utf16();
}

bool JsonCursor::is_utf16() const noexcept {
    return value_->is_object() && value_->contains("utf16");
}

bool JsonCursor::is_object() const noexcept {
    return value_->is_object();
}

bool JsonCursor::is_array() const noexcept {
    return value_->is_array();
}

bool JsonCursor::is_bool() const noexcept {
    return value_->is_boolean();
}

bool JsonCursor::is_fraction() const noexcept {
    return value_->is_number_float();
}

bool JsonCursor::is_negative() const noexcept {
    return value_->is_number_integer() && !value_->is_number_unsigned();
}

bool JsonCursor::Bool() const {
    if (!value_->is_boolean()) {
        Refuse("must be true or false");
    }
    return value_->get<bool>();
}

std::string JsonCursor::Utf8() const {
    if (!value_->is_string()) {
        Refuse("must be text");
    }
    return value_->get<std::string>();
}

std::wstring JsonCursor::Text() const {
    if (!is_utf16()) {
        return Widen(Utf8());
    }
    const JsonObject object = Object();
    const JsonCursor digits = object.Require("utf16");
    object.RefuseOthers();
    const Bytes bytes = digits.HexBytes();
    if (bytes.size() % 2 != 0) {
        digits.Refuse("must be code units of four hexadecimal digits like \"0041 D800\"");
    }
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        text += static_cast<wchar_t>(bytes[i] << 8 | bytes[i + 1]);
    }
    return text;
}

std::uint64_t JsonCursor::Number(std::uint64_t limit) const {
    std::optional<std::uint64_t> number;
    if (value_->is_number_unsigned()) {
        number = value_->get<std::uint64_t>();
    } else if (value_->is_string()) {
        number = Hexadecimal(value_->get<std::string>());
    }
    if (!number) {
        Refuse("must be a whole number of 0 or more, or hexadecimal text like \"0x1F\"");
    }
    if (*number > limit) {
        Refuse("must not be more than " + std::to_string(limit));
    }
    return *number;
}

std::int64_t JsonCursor::Negative() const {
    return value_->get<std::int64_t>();
}

double JsonCursor::Real() const {
    if (!value_->is_number()) {
        Refuse("must be a number");
    }
    return value_->get<double>();
}

std::uint64_t JsonCursor::ByteCount() const {
    if (!value_->is_string() || Hexadecimal(value_->get<std::string>())) {
        return Number(kMostBytes);
    }
    const std::string text = value_->get<std::string>();
    const std::size_t blank = text.find(' ');
    const auto* unit = blank == std::string::npos
                           ? std::end(kUnits)
                           : std::find_if(std::begin(kUnits), std::end(kUnits), [&](const Unit& candidate) {
                                 return text.compare(blank + 1, std::string::npos, candidate.name) == 0;
                             });
    const auto number = Parsed(text.data(), text.data() + std::min(blank, text.size()), 10);
    if (unit == std::end(kUnits) || !number) {
        Refuse("must be a number of bytes or text like \"100 MiB\"");
    }
    if (*number > kMostBytes / unit->bytes) {
        Refuse("is too large");
    }
    return *number * unit->bytes;
}

GUID JsonCursor::Guid() const {
    const auto guid = ParseGuid(Utf8());
    if (!guid) {
        Refuse("must be a GUID like \"{01234567-89ab-cdef-0123-456789abcdef}\"");
    }
    return *guid;
}

Bytes JsonCursor::HexBytes() const {
    std::string digits;
    for (const char c : Utf8()) {
        if (c != ' ') {
            digits += c;
        }
    }
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const auto byte =
            i + 2 <= digits.size() ? Parsed(digits.data() + i, digits.data() + i + 2, 16) : std::nullopt;
        if (!byte) {
            Refuse("must be bytes in hexadecimal like \"01 fe\"");
        }
        bytes.push_back(static_cast<std::uint8_t>(*byte));
    }
    return bytes;
}

std::vector<JsonCursor> JsonCursor::Elements() const {
    if (!value_->is_array()) {
        Refuse("must be a list");
    }
    std::vector<JsonCursor> elements;
    for (std::size_t i = 0; i < value_->size(); ++i) {
        elements.emplace_back((*value_)[i], *file_, path_ + "/" + std::to_string(i));
    }
    return elements;
}

JsonObject JsonCursor::Object() const {
    return {*this, *file_};
}

JsonObject::JsonObject(const JsonCursor& cursor, const std::string& file) : cursor_(cursor), file_(&file) {
    if (!cursor.is_object()) {
        cursor.Refuse("must be an object");
    }
}

std::optional<JsonCursor> JsonObject::Find(const std::string& key) const {
    asked_.push_back(key);
    const auto found = cursor_.value().find(key);
    if (found == cursor_.value().end()) {
        return std::nullopt;
    }
    return JsonCursor(*found, *file_, cursor_.path() + "/" + Escaped(key));
}

JsonCursor JsonObject::Require(const std::string& key) const {
    const auto found = Find(key);
    if (!found) {
        Refuse("lacks \"" + key + "\"");
    }
    return *found;
}

std::vector<std::pair<std::string, JsonCursor>> JsonObject::Members() const {
    std::vector<std::pair<std::string, JsonCursor>> members;
    for (const auto& [key, value] : cursor_.value().items()) {
        members.emplace_back(key, JsonCursor(value, *file_, cursor_.path() + "/" + Escaped(key)));
    }
    return members;
}

void JsonObject::RefuseOthers() const {
    for (const auto& [key, value] : cursor_.value().items()) {
        if (std::find(asked_.begin(), asked_.end(), key) == asked_.end()) {
            JsonCursor(value, *file_, cursor_.path() + "/" + Escaped(key)).Refuse("is not a known key");
        }
    }
}

}  // namespace machine
