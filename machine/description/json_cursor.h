#pragma once

#include "machine/description/description.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace machine {

class JsonObject;

// A JSON value of a description file together with its path, which error messages contain.
class JsonCursor {
public:
    // `file` is the file name used in errors. `value` and `file` must outlive the cursor.
    JsonCursor(const nlohmann::json& value, const std::string& file, std::string path = {});

    [[noreturn]] void Refuse(const std::string& reason) const;

    const std::string& path() const noexcept { return path_; }
    const nlohmann::json& value() const noexcept { return *value_; }
    bool is_null() const noexcept;
    bool is_text() const noexcept;   // in either form
    bool is_utf16() const noexcept;  // text as {"utf16": "..."}
    bool is_object() const noexcept;
    bool is_array() const noexcept;
    bool is_bool() const noexcept;
    bool is_fraction() const noexcept;  // a number with a point or an exponent
    bool is_negative() const noexcept;  // a negative integer

    bool Bool() const;
    std::string Utf8() const;
    std::wstring Text() const;  // plain, or {"utf16": "0041 D800"} for text that is not valid Unicode

    // An integer from 0 to `limit`, as a JSON integer or as hexadecimal text ("0x1F").
    std::uint64_t Number(std::uint64_t limit = UINT64_MAX) const;
    std::uint32_t Number32() const { return static_cast<std::uint32_t>(Number(UINT32_MAX)); }

    // A negative integer; call only if is_negative().
    std::int64_t Negative() const;
    double Real() const;

    // A number of bytes: as Number, or text with a unit ("100 MiB", "2 TB").
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

// The members of an object. Tracks which keys were requested; RefuseOthers rejects all others.
class JsonObject {
public:
    JsonObject(const JsonCursor& cursor, const std::string& file);

    const JsonCursor& cursor() const noexcept { return cursor_; }
    [[noreturn]] void Refuse(const std::string& reason) const { cursor_.Refuse(reason); }

    bool Has(const char* key);
    std::optional<JsonCursor> Find(const std::string& key);
    JsonCursor Require(const std::string& key);

    // All members that were not requested, as pairs of key and value.
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

// A name that may be used in place of a number.
struct NamedNumber {
    const char* name;
    std::uint32_t number;
};

// Returns the number for a name in the table, or a plain number. Refuses unknown names.
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
