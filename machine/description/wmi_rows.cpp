#include "machine/description/tables.h"
#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"

#include <oaidl.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

namespace machine::rows {
namespace {

constexpr std::uint32_t kTextArray = VT_ARRAY | VT_BSTR;
constexpr std::uint32_t kNumberArray = VT_ARRAY | VT_I4;

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
    {"VT_ARRAY|VT_UI1", VT_ARRAY | VT_UI1},
    {"VT_ARRAY|VT_I2", VT_ARRAY | VT_I2},
    {"VT_ARRAY|VT_I4", kNumberArray},
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
    RangeOf<std::int8_t>(VT_I1),    RangeOf<std::uint8_t>(VT_UI1),   RangeOf<std::int16_t>(VT_I2),
    RangeOf<std::uint16_t>(VT_UI2), RangeOf<std::int32_t>(VT_I4),    RangeOf<std::uint32_t>(VT_UI4),
    RangeOf<std::int32_t>(VT_INT),  RangeOf<std::uint32_t>(VT_UINT), RangeOf<std::int64_t>(VT_I8),
};

std::int64_t Integer(const JsonCursor& cursor, VARTYPE type) {
    if (type == VT_UI8) {
        return static_cast<std::int64_t>(cursor.Number());
    }
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
            if ((type & VT_ARRAY) == 0) {
                value.number = Integer(cursor, type);
                break;
            }
            for (const JsonCursor& element : cursor.Elements()) {
                value.numbers.push_back(Integer(element, type & VT_TYPEMASK));
            }
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
        const std::vector<JsonCursor> elements = cursor.Elements();
        return elements.empty() || elements.front().is_text() ? kTextArray : kNumberArray;
    }
    return cursor.is_fraction() ? VT_R8 : VT_I4;
}

WmiValue ReadValue(const JsonCursor& cursor, const Place& place) {
    if (!cursor.is_object() || cursor.is_utf16()) {
        return Typed(cursor, NaturalType(cursor));
    }
    const JsonObject object = cursor.Object();
    WmiValue value;
    if (const auto error = object.Find("error")) {
        value.error = error->Number32();
    } else {
        const JsonCursor type_cursor = object.Require("type");
        const std::uint32_t type = Named(kTypes).read(type_cursor, place);
        if (std::none_of(std::begin(kTypes), std::end(kTypes),
                         [&](const NamedNumber& known) { return known.number == type; })) {
            type_cursor.Refuse("is no type of a property");
        }
        const bool needs_none = type == VT_NULL || type == VT_EMPTY;
        value = Typed(needs_none ? type_cursor : object.Require("value"), static_cast<VARTYPE>(type));
    }
    object.RefuseOthers();
    return value;
}

Json WriteTyped(const WmiValue& value, const Place& place) {
    switch (value.type) {
        case VT_NULL:
        case VT_EMPTY:
            return nullptr;
        case VT_BOOL:
            return value.number != 0;
        case VT_BSTR:
            return Text().write(value.text, place);
        case VT_R4:
        case VT_R8:
            return value.real;
        case VT_UI8:
            return static_cast<std::uint64_t>(value.number);
        case kTextArray:
            return List("", Text()).write(value.texts, place);
        default:
            return (value.type & VT_ARRAY) == 0 ? Json(value.number) : Json(value.numbers);
    }
}

Json WriteValue(const WmiValue& value, const Place& place) {
    if (value.error) {
        return {{"error", *value.error}};
    }
    constexpr VARTYPE kNatural[] = {VT_NULL, VT_BOOL, VT_BSTR, VT_I4, VT_R8, kTextArray, kNumberArray};
    const bool empty_numbers = value.type == kNumberArray && value.numbers.empty();
    if (!empty_numbers &&
        std::find(std::begin(kNatural), std::end(kNatural), value.type) != std::end(kNatural)) {
        return WriteTyped(value, place);
    }
    Json object = {{"type", Named(kTypes).write(value.type, place)}};
    if (value.type != VT_EMPTY) {
        object["value"] = WriteTyped(value, place);
    }
    return object;
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

// What distinguishes an instance from the derived one that it overrides. `Index` finds that one again.
WmiInstance Differences(const WmiClass* derived, const WmiInstance& instance) {
    const WmiInstance underlying = Underlying(derived, instance);
    WmiInstance different;
    for (const WmiProperty& property : instance) {
        const WmiProperty* usual = FindProperty(underlying, property.name);
        if (usual == nullptr || usual->value != property.value || EqualNames(property.name, L"Index")) {
            different.push_back(property);
        }
    }
    return different;
}

Kind<WmiInstance> Instance() {
    Kind<WmiInstance> kind = Properties();
    kind.read = [read = kind.read](const JsonCursor& cursor, const Place& place) {
        const WmiInstance described = read(cursor, place);
        WmiInstance instance = Underlying(place.derived, described);
        for (const WmiProperty& property : described) {
            SetProperty(instance, property);
        }
        return instance;
    };
    kind.write = [write = kind.write](const WmiInstance& instance, const Place& place) {
        return write(Differences(place.derived, instance), place);
    };
    return kind;
}

const Kind<WmiClass>& ClassKind() {
    static const Table<WmiClass> breaks = {{"after", &WmiClass::whole_objects, Number(), Required{}, ""},
                                           {"error", &WmiClass::break_error, Number(), Required{}, ""}};
    static const Table<WmiClass> table =
        Joined({{{"instances", &WmiClass::instances, List("list of instances", Instance()),
                  Derived{"derived",
                          [](const WmiClass&, const Place& place) {
                              return place.derived == nullptr ? std::vector<WmiInstance>{}
                                                              : place.derived->instances;
                          }},
                  ""}},
                {Group<WmiClass>("breaks", "object with `after` and `error`", "none", "", breaks)},
                ErrorRows<WmiClass>(CallScope::kWmiClass)});
    static const auto kind = Object("", table, Form::kShort);
    return kind;
}

const WmiClass* FindClass(const Description& description, const std::wstring& key) {
    const auto found = description.wmi.find(key);
    return found == description.wmi.end() ? nullptr : &found->second;
}

void TakeClasses(Description& description, const JsonCursor& cursor, const Place& outer) {
    AddDerivedWmi(description);
    Place place = outer;
    for (const auto& [name, value] : cursor.Object().Members()) {
        const std::wstring key = WmiClassKey(Widen(name));
        if (value.is_null()) {
            description.wmi.erase(key);
            continue;
        }
        place.derived = FindClass(description, key);
        WmiClass described = ClassKind().read(value, place);
        description.wmi[key] = std::move(described);
    }
}

Json WriteClasses(const Description& description, const Place& outer) {
    Description derived = description;
    derived.wmi.clear();
    AddDerivedWmi(derived);
    Json classes = Json::object();
    for (const auto& [key, ignored] : derived.wmi) {
        if (FindClass(description, key) == nullptr) {
            classes[Narrow(key)] = nullptr;
        }
    }
    Place place = outer;
    for (const auto& [key, own] : description.wmi) {
        place.derived = FindClass(derived, key);
        if (place.derived == nullptr || *place.derived != own) {
            classes[Narrow(key)] = ClassKind().write(own, place);
        }
    }
    return classes;
}

}  // namespace

Kind<WmiInstance> Properties() {
    return {"object",
            [](const JsonCursor& cursor, const Place& place) {
                WmiInstance properties;
                for (const auto& [name, value] : cursor.Object().Members()) {
                    properties.push_back({Widen(name), ReadValue(value, place)});
                }
                return properties;
            },
            [](const WmiInstance& properties, const Place& place) {
                Json object = Json::object();
                for (const WmiProperty& property : properties) {
                    object[Narrow(property.name)] = WriteValue(property.value, place);
                }
                return object;
            }};
}

Row<Description> WmiRow() {
    return {"wmi",
            "object: class to [instances](#wmi)",
            "derived",
            "",
            [](Description& description, const JsonCursor& cursor, Place& place) {
                TakeClasses(description, cursor, place);
            },
            [](const Description& description, const Place& place) {
                Json classes = WriteClasses(description, place);
                return classes.empty() ? std::nullopt : std::optional(std::move(classes));
            },
            [](Description& description, const Place&) { AddDerivedWmi(description); }};
}

}  // namespace machine::rows
