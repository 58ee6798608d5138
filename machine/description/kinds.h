#pragma once

#include "machine/description/control_codes.h"
#include "machine/description/row_kinds.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

// The kinds of values that several parts of a description have.
namespace machine::rows {

const Kind<bool>& Flag();
const Kind<std::uint16_t>& Number16();
const Kind<std::uint32_t>& Number();
Kind<std::uint32_t> NumberUpTo(std::uint32_t limit);
const Kind<std::uint64_t>& LongNumber();
const Kind<std::uint64_t>& ByteCount();
const Kind<std::string>& Utf8();
const Kind<std::wstring>& Text();
const Kind<GUID>& Guid();
const Kind<std::wstring>& GuidName();  // "{...}" in lower case

// A name that may be used in place of a number.
struct NamedNumber {
    const char* name;
    std::uint32_t number;
};

// A name of the table, or any number.
Kind<std::uint32_t> Named(std::span<const NamedNumber> table);

// Values of a kind for which `fault` returns null; otherwise it returns the reason to refuse them.
template <class T>
Kind<T> Checked(const std::string& name, Kind<T> kind, const char* (*fault)(const T&)) {
    kind.name = name;
    kind.read = [read = std::move(kind.read), fault](const JsonCursor& cursor, const Place& place) {
        T value = read(cursor, place);
        if (const char* reason = fault(value)) {
            cursor.Refuse(reason);
        }
        return value;
    };
    return kind;
}

Kind<CallErrors> Errors(CallScope scope);

// Adds the error of a call that does not return to each call of the scope that has no described error.
void Block(CallErrors& errors, CallScope scope);

// The rows of the described errors.
template <class Owner>
Table<Owner> ErrorRows(CallScope scope) {
    Table<Owner> table = {{"errors", &Owner::errors, Errors(scope), "see [Errors](#errors)"}};
    if (!BlockingCalls(scope).empty()) {
        table.emplace_back(
            "blocks", "true or false", "false", "true: it does not answer, see [Errors](#errors)",
            [scope](Owner& owner, const JsonCursor& cursor, Place&) {
                if (cursor.Bool()) {
                    Block(owner.errors, scope);
                }
            },
            [](const Owner&, const Place&) { return std::nullopt; });  // its errors are written
    }
    return table;
}

}  // namespace machine::rows
