#pragma once

#include "machine/description.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace machine {

class JsonObject;

// A value of a description file together with where it stands, so that what is wrong with it can be told.
class JsonCursor {
public:
    // `file` names the file in errors and must outlive the cursor.
    JsonCursor(const nlohmann::json& value, const std::string& file, std::string path = {});

    [[noreturn]] void Refuse(const std::string& reason) const;

    const std::string& path() const noexcept { return path_; }
    const nlohmann::json& value() const noexcept { return *value_; }
    bool is_null() const noexcept;
    bool is_text() const noexcept;
    bool is_object() const noexcept;
    bool is_array() const noexcept;
    bool is_bool() const noexcept;
    bool is_fraction() const noexcept;  // a number with a point or an exponent
    bool is_negative() const noexcept;  // a whole number under 0

    bool Bool() const;
    std::string Utf8() const;
    std::wstring Text() const;

    // A number from 0 to `limit`: a JSON integer or text in hexadecimal ("0x1F").
    std::uint64_t Number(std::uint64_t limit = UINT64_MAX) const;
    std::uint32_t Number32() const { return static_cast<std::uint32_t>(Number(UINT32_MAX)); }

    // A whole number under 0, where is_negative().
    std::int64_t Negative() const;
    double Real() const;

    // As Number, also with a unit: "100 MiB", "2 TB".
    std::uint64_t ByteCount() const;

    GUID Guid() const;
    Bytes HexBytes() const;
    std::vector<JsonCursor> Elements() const;
    JsonObject Object() const;

private:
    const nlohmann::json* value_;
    const std::string* file_;
    std::string path_;
};

// The members of an object. What has been asked for is known; RefuseOthers refuses the rest.
class JsonObject {
public:
    JsonObject(const JsonCursor& cursor, const std::string& file);

    const JsonCursor& cursor() const noexcept { return cursor_; }
    [[noreturn]] void Refuse(const std::string& reason) const { cursor_.Refuse(reason); }

    bool Has(const char* key);
    std::optional<JsonCursor> Find(const std::string& key);
    JsonCursor Require(const std::string& key);

    // Every member that has not been asked for, as a map from key to value.
    std::vector<std::pair<std::string, JsonCursor>> Others();
    void RefuseOthers() const;

    bool Bool(const char* key, bool otherwise);
    std::uint32_t Number32(const char* key, std::uint32_t otherwise);
    std::uint64_t Number(const char* key, std::uint64_t otherwise);
    std::uint64_t ByteCount(const char* key, std::uint64_t otherwise);
    std::wstring Text(const char* key, const std::wstring& otherwise);

private:
    JsonCursor cursor_;
    const std::string* file_;
    std::set<std::string> asked_;
};

// A name that stands for a number in a description.
struct NamedNumber {
    const char* name;
    std::uint32_t number;
};

// The number of a name out of the table, or a plain number.
template <std::size_t Size>
std::uint32_t NamedOrNumber(const JsonCursor& cursor, const NamedNumber (&table)[Size]) {
    if (cursor.is_text()) {
        const std::string text = cursor.Utf8();
        std::string known;
        for (const NamedNumber& named : table) {
            if (text == named.name) {
                return named.number;
            }
            known += known.empty() ? "" : ", ";
            known += named.name;
        }
        if (text.compare(0, 2, "0x") != 0) {
            cursor.Refuse("\"" + text + "\" is none of " + known);
        }
    }
    return cursor.Number32();
}

}  // namespace machine
