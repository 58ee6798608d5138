#pragma once

#include "machine/description/description.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
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

// The members of an object. Remembers which keys were asked for; RefuseOthers refuses all others.
class JsonObject {
public:
    JsonObject(const JsonCursor& cursor, const std::string& file);

    const JsonCursor& cursor() const noexcept { return cursor_; }
    [[noreturn]] void Refuse(const std::string& reason) const { cursor_.Refuse(reason); }

    bool Has(const std::string& key) const { return Find(key).has_value(); }
    std::optional<JsonCursor> Find(const std::string& key) const;
    JsonCursor Require(const std::string& key) const;

    // In the order of the keys.
    std::vector<std::pair<std::string, JsonCursor>> Members() const;

    void RefuseOthers() const;

private:
    JsonCursor cursor_;
    const std::string* file_;
    mutable std::vector<std::string> asked_;
};

}  // namespace machine
