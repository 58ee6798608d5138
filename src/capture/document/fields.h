#pragma once

#include "common/platform/guid.h"
#include "common/windows.h"
#include "common/xml/ms_xml.h"
#include "common/xml/xml_values.h"

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

// Appends one element with a value: numbers in decimal, truth values as "1" or "0", GUIDs in registry form,
// texts unchanged.
template <std::integral Number>
void AddValue(CMSXmlNode& parent, const char* element, Number value) {
    AddNumberElement(parent, element, value);
}
inline void AddValue(CMSXmlNode& parent, const char* element, bool value) {
    parent.AddTextChild(element, value ? L"1" : L"0");
}
inline void AddValue(CMSXmlNode& parent, const char* element, const GUID& value) {
    parent.AddTextChild(element, GuidText(value));
}
inline void AddValue(CMSXmlNode& parent, const char* element, const std::wstring& value) {
    parent.AddTextChild(element, value);
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
        std::visit([&](auto member) { AddValue(parent, field.element, ValueOf(record, member)); },
                   field.member);
    }
}
