#include "machine/description/parsing.h"
#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"

#include <oaidl.h>

#include <limits>
#include <string>
#include <utility>

namespace machine::parsing {
namespace {

constexpr std::uint32_t kTextArray = VT_ARRAY | VT_BSTR;

constexpr NamedNumber kTypes[] = {
    {"VT_NULL", VT_NULL},
    {"VT_EMPTY", VT_EMPTY},
    {"VT_BOOL", VT_BOOL},
    {"VT_I1", VT_I1},
    {"VT_UI1", VT_UI1},
    {"VT_I2", VT_I2},
    {"VT_UI2", VT_UI2},
    {"VT_I4", VT_I4},
    {"VT_UI4", VT_UI4},
    {"VT_INT", VT_INT},
    {"VT_UINT", VT_UINT},
    {"VT_I8", VT_I8},
    {"VT_UI8", VT_UI8},
    {"VT_R4", VT_R4},
    {"VT_R8", VT_R8},
    {"VT_BSTR", VT_BSTR},
    {"VT_ARRAY|VT_BSTR", kTextArray},
};

struct Range {
    VARTYPE type;
    std::int64_t least;
    std::int64_t most;
};

template <class Number>
constexpr Range RangeOf(VARTYPE type) {
    return {type, std::numeric_limits<Number>::min(),
            static_cast<std::int64_t>(std::numeric_limits<Number>::max())};
}

constexpr Range kRanges[] = {
    RangeOf<std::int8_t>(VT_I1),   RangeOf<std::uint8_t>(VT_UI1),
    RangeOf<std::int16_t>(VT_I2),  RangeOf<std::uint16_t>(VT_UI2),
    RangeOf<std::int32_t>(VT_I4),  RangeOf<std::uint32_t>(VT_UI4),
    RangeOf<std::int32_t>(VT_INT), RangeOf<std::uint32_t>(VT_UINT),
    RangeOf<std::int64_t>(VT_I8),  {VT_UI8, 0, std::numeric_limits<std::int64_t>::max()},
};

std::int64_t Integer(const JsonCursor& cursor, VARTYPE type) {
    const std::int64_t number =
        cursor.is_negative()
            ? cursor.Negative()
            : static_cast<std::int64_t>(cursor.Number(std::numeric_limits<std::int64_t>::max()));
    for (const Range& range : kRanges) {
        if (range.type == type && (number < range.least || number > range.most)) {
            cursor.Refuse("does not fit the type; give {\"type\": ..., \"value\": ...} with a larger one");
        }
    }
    return number;
}

WmiValue Typed(const JsonCursor& cursor, VARTYPE type) {
    WmiValue value;
    value.type = type;
    switch (type) {
        case VT_NULL:
        case VT_EMPTY:
            break;
        case VT_BOOL:
            value.number = cursor.Bool() ? 1 : 0;
            break;
        case VT_BSTR:
            value.text = cursor.Text();
            break;
        case VT_R4:
        case VT_R8:
            value.real = cursor.Real();
            break;
        case kTextArray:
            for (const JsonCursor& element : cursor.Elements()) {
                value.texts.push_back(element.Text());
            }
            break;
        default:
            value.number = Integer(cursor, type);
            break;
    }
    return value;
}

VARTYPE NaturalType(const JsonCursor& cursor) {
    if (cursor.is_null()) {
        return VT_NULL;
    }
    if (cursor.is_text()) {
        return VT_BSTR;
    }
    if (cursor.is_bool()) {
        return VT_BOOL;
    }
    if (cursor.is_array()) {
        return kTextArray;
    }
    return cursor.is_fraction() ? VT_R8 : VT_I4;
}

WmiValue ValueOf(const JsonCursor& cursor) {
    if (!cursor.is_object() || cursor.is_utf16()) {
        return Typed(cursor, NaturalType(cursor));
    }
    JsonObject object = cursor.Object();
    WmiValue value;
    if (const auto error = object.Find("error")) {
        value.error = error->Number32();
    } else {
        const JsonCursor type_cursor = object.Require("type");
        const std::uint32_t type = NamedOrNumber(type_cursor, kTypes);
        const bool needs_none = type == VT_NULL || type == VT_EMPTY;
        value = Typed(needs_none ? type_cursor : object.Require("value"), static_cast<VARTYPE>(type));
    }
    object.RefuseOthers();
    return value;
}

// The derived instance that a described one overrides: the one with the same Index or, if the described
// instance has no Index, the only one. Empty if there is none.
WmiInstance Underlying(const WmiClass* derived, const WmiInstance& described) {
    if (derived == nullptr) {
        return {};
    }
    const WmiProperty* index = FindProperty(described, L"Index");
    if (index == nullptr) {
        return derived->instances.size() == 1 ? derived->instances.front() : WmiInstance{};
    }
    for (const WmiInstance& instance : derived->instances) {
        const WmiProperty* own = FindProperty(instance, L"Index");
        if (own != nullptr && own->value.number == index->value.number) {
            return instance;
        }
    }
    return {};
}

WmiClass Class(const JsonCursor& cursor, const WmiClass* derived) {
    WmiClass described;
    std::optional<JsonCursor> instances = cursor;
    if (cursor.is_object()) {
        JsonObject object = cursor.Object();
        instances = object.Find("instances");
        if (const auto broken = object.Find("breaks")) {
            JsonObject breaks = broken->Object();
            described.whole_objects = breaks.Require("after").Number32();
            described.break_error = breaks.Require("error").Number32();
            breaks.RefuseOthers();
        }
        described.errors = ErrorsOf(object, CallScope::kWmiClass);
        object.RefuseOthers();
        if (!instances && derived != nullptr) {
            described.instances = derived->instances;
        }
    }
    if (instances) {
        for (const JsonCursor& element : instances->Elements()) {
            const WmiInstance properties = Properties(element);
            WmiInstance instance = Underlying(derived, properties);
            for (const WmiProperty& property : properties) {
                SetProperty(instance, property);
            }
            described.instances.push_back(std::move(instance));
        }
    }
    return described;
}

}  // namespace

WmiInstance Properties(const JsonCursor& cursor) {
    WmiInstance properties;
    for (const auto& [name, value] : cursor.Object().Others()) {
        properties.push_back({Widen(name), ValueOf(value)});
    }
    return properties;
}

void Wmi(const JsonCursor& cursor, Description& description) {
    for (const auto& [name, value] : cursor.Object().Others()) {
        const std::wstring key = WmiClassKey(Widen(name));
        if (value.is_null()) {
            description.wmi.erase(key);
            continue;
        }
        const auto derived = description.wmi.find(key);
        WmiClass described = Class(value, derived == description.wmi.end() ? nullptr : &derived->second);
        description.wmi[key] = std::move(described);
    }
}

}  // namespace machine::parsing
