#include "machine/description/kinds.h"

#include "machine/description/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

namespace machine::rows {
namespace {

// A kind that a cursor reads by itself.
template <class T, class Read>
Kind<T> Simple(const char* name, Read read) {
    return {name, [read](const JsonCursor& cursor, const Place&) { return static_cast<T>(read(cursor)); },
            [](const T& value, const Place&) { return Json(value); }};
}

Json WrittenText(const std::wstring& text) {
    std::string plain = Narrow(text);
    if (Widen(plain) == text) {
        return plain;
    }
    std::string units;
    for (const wchar_t unit : text) {
        std::array<char, 8> digits{};
        std::snprintf(digits.data(), digits.size(), units.empty() ? "%04X" : " %04X",
                      static_cast<unsigned>(unit));
        units += digits.data();
    }
    return {{"utf16", units}};
}

// The code of a described error, or {"blocks": true} for a call that never returns.
std::uint32_t CodeOf(const JsonCursor& cursor, const std::string& call) {
    if (!cursor.is_object()) {
        const auto code = cursor.Number32();
        if (code == 0) {
            cursor.Refuse("must not be 0, which is success");
        }
        return code;
    }
    const JsonObject object = cursor.Object();
    if (!object.Require("blocks").Bool()) {
        object.Require("blocks").Refuse("must be true");
    }
    object.RefuseOthers();
    return BlockedCode(call);
}

CallErrors ReadErrors(const JsonCursor& cursor, CallScope scope) {
    CallErrors errors;
    for (const auto& [call, code] : cursor.Object().Members()) {
        if (!IsCallOf(scope, call)) {
            code.Refuse("is no call that can fail here");
        }
        errors.codes[call] = CodeOf(code, call);
    }
    return errors;
}

}  // namespace

std::string DefaultText(const Json& value) {
    if (value.is_null() || (value.is_structured() && value.empty())) {
        return "none";
    }
    if (value.is_string()) {
        const auto text = value.get<std::string>();
        return text.empty() ? "empty" : "`" + text + "`";
    }
    return value.dump();
}

const Kind<bool>& Flag() {
    static const auto kind =
        Simple<bool>("true or false", [](const JsonCursor& cursor) { return cursor.Bool(); });
    return kind;
}

const Kind<std::uint16_t>& Number16() {
    static const auto kind =
        Simple<std::uint16_t>("number", [](const JsonCursor& cursor) { return cursor.Number(UINT16_MAX); });
    return kind;
}

Kind<std::uint32_t> NumberUpTo(std::uint32_t limit) {
    return Simple<std::uint32_t>("number",
                                 [limit](const JsonCursor& cursor) { return cursor.Number(limit); });
}

const Kind<std::uint32_t>& Number() {
    static const auto kind = NumberUpTo(UINT32_MAX);
    return kind;
}

const Kind<std::uint64_t>& LongNumber() {
    static const auto kind =
        Simple<std::uint64_t>("number", [](const JsonCursor& cursor) { return cursor.Number(UINT64_MAX); });
    return kind;
}

const Kind<std::uint64_t>& ByteCount() {
    static const auto kind =
        Simple<std::uint64_t>("bytes", [](const JsonCursor& cursor) { return cursor.ByteCount(); });
    return kind;
}

const Kind<std::string>& Utf8() {
    static const auto kind =
        Simple<std::string>("valid text", [](const JsonCursor& cursor) { return cursor.Utf8(); });
    return kind;
}

const Kind<std::wstring>& Text() {
    static const Kind<std::wstring> kind = {
        "text", [](const JsonCursor& cursor, const Place&) { return cursor.Text(); },
        [](const std::wstring& text, const Place&) { return WrittenText(text); }};
    return kind;
}

const Kind<GUID>& Guid() {
    static const Kind<GUID> kind = {"GUID",
                                    [](const JsonCursor& cursor, const Place&) { return cursor.Guid(); },
                                    [](const GUID& guid, const Place&) { return Json(GuidText(guid)); }};
    return kind;
}

const Kind<std::wstring>& GuidName() {
    static const Kind<std::wstring> kind = {
        "GUID", [](const JsonCursor& cursor, const Place&) { return Widen(GuidText(cursor.Guid())); },
        [](const std::wstring& name, const Place&) { return WrittenText(name); }};
    return kind;
}

Kind<std::uint32_t> Named(std::span<const NamedNumber> table) {
    std::string list;
    std::string marked;
    for (const NamedNumber& named : table) {
        list += (list.empty() ? "" : ", ") + std::string(named.name);
        marked += "`" + std::string(named.name) + "`, ";
    }
    marked.replace(marked.size() - 2, 2, " or a number");
    return {marked,
            [table, list](const JsonCursor& cursor, const Place&) {
                if (cursor.is_text()) {
                    const std::string text = cursor.Utf8();
                    for (const NamedNumber& named : table) {
                        if (text == named.name) {
                            return named.number;
                        }
                    }
                    if (text.compare(0, 2, "0x") != 0) {
                        cursor.Refuse("\"" + text + "\" is none of " + list);
                    }
                }
                return cursor.Number32();
            },
            [table](const std::uint32_t& number, const Place&) {
                const auto named =
                    std::find_if(table.begin(), table.end(),
                                 [&](const NamedNumber& candidate) { return candidate.number == number; });
                return named == table.end() ? Json(number) : Json(named->name);
            }};
}

Kind<CallErrors> Errors(CallScope scope) {
    return {"errors", [scope](const JsonCursor& cursor, const Place&) { return ReadErrors(cursor, scope); },
            [](const CallErrors& errors, const Place&) {
                // In the order of the names.
                Json object = Json::object();
                for (const auto& [call, code] : std::map(errors.codes.begin(), errors.codes.end())) {
                    object[call] = code;
                }
                return object;
            }};
}

void Block(CallErrors& errors, CallScope scope) {
    for (const std::string& call : BlockingCalls(scope)) {
        errors.codes.emplace(call, BlockedCode(call));
    }
}

}  // namespace machine::rows
