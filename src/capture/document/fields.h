#pragma once

#include "common/platform/guid.h"
#include "common/text/decimal_text.h"
#include "common/windows.h"
#include "common/xml/ms_xml.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

// An unsigned member that the document shows as a signed number of the same width.
template <class Record, class Number>
struct Signed {
    Number Record::*member;
};

// A table describes the elements of a record. Each row names an element and the member that holds its value,
// in document order.

template <class Record>
using FieldMember =
    std::variant<std::int32_t Record::*, std::uint32_t Record::*, std::int64_t Record::*,
                 std::uint64_t Record::*, std::uint8_t Record::*, bool Record::*, GUID Record::*,
                 std::wstring Record::*, Signed<Record, std::uint32_t>, Signed<Record, std::uint64_t>>;

template <class Record>
struct Field {
    const char* element;
    FieldMember<Record> member;
};

// Converts values to text: numbers to plain decimal, truth values to "1" or "0", GUIDs to registry form.
// Strings do not change.
template <std::integral Number>
std::wstring ValueText(Number value) {
    return DecimalText(value);
}
inline std::wstring_view ValueText(bool value) {
    return value ? L"1" : L"0";
}
inline std::wstring ValueText(const GUID& value) {
    return GuidText(value);
}
inline const std::wstring& ValueText(const std::wstring& value) {
    return value;
}

template <class Record, class Value>
decltype(auto) ValueOf(const Record& record, Value Record::*member) {
    return (record.*member);
}

template <class Record, class Number>
auto ValueOf(const Record& record, Signed<Record, Number> field) {
    return static_cast<std::make_signed_t<Number>>(record.*field.member);
}

// Appends one element per row to `parent`; throws _com_error.
template <class Record, class Fields>
void WriteFields(CMSXmlNode& parent, const Record& record, const Fields& fields) {
    for (const auto& field : fields) {
        std::visit(
            [&](auto member) { parent.AddTextChild(field.element, ValueText(ValueOf(record, member))); },
            field.member);
    }
}
