#include "faults/variant_lies.h"

#include "common/windows.h"

#include <oleauto.h>

#include <string>

namespace faults {

namespace {

using Fill = std::function<void(VARIANT&)>;

NamedLie Typed(const std::string& name, const Fill& fill) {
    return {"variant-" + name, [fill](machine::Answer& answer) {
                if (answer.variant != nullptr) {
                    VariantClear(answer.variant);
                    fill(*answer.variant);
                }
            }};
}

// Every plain type with no bits set, all bits set and the value 70,000; every pointer type with a null
// pointer.
void AddPlainTypes(std::vector<NamedLie>& lies) {
    constexpr VARTYPE kTypes[] = {VT_EMPTY, VT_NULL, VT_I1,   VT_UI1,  VT_I2,  VT_UI2,
                                  VT_I4,    VT_UI4,  VT_I8,   VT_UI8,  VT_INT, VT_UINT,
                                  VT_R4,    VT_R8,   VT_BOOL, VT_DATE, VT_CY,  VT_ERROR};
    for (const VARTYPE type : kTypes) {
        for (const long long bits : {0LL, -1LL, 70'000LL}) {
            lies.push_back(
                Typed(std::to_string(type) + "-" + std::to_string(bits), [type, bits](VARIANT& variant) {
                    variant.llVal = bits;
                    variant.vt = type;
                }));
        }
    }
    constexpr VARTYPE kPointers[] = {VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_ARRAY | VT_BSTR, VT_ARRAY | VT_I4};
    for (const VARTYPE type : kPointers) {
        lies.push_back(Typed(std::to_string(type) + "-null", [type](VARIANT& variant) {
            variant.llVal = 0;
            variant.vt = type;
        }));
    }
}

void AddTexts(std::vector<NamedLie>& lies) {
    const std::wstring texts[] = {L"",         std::wstring(100'000, L'x'), std::wstring(L"a\0b\0\0c", 6),
                                  L"%s%s%n%d", L"\xD800<&>\x0001\xFFFF",    L"99999999999999999999"};
    std::size_t number = 0;
    for (const std::wstring& text : texts) {
        lies.push_back(Typed("text-" + std::to_string(number++), [text](VARIANT& variant) {
            variant.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
            variant.vt = VT_BSTR;
        }));
    }
}

void PutArray(VARIANT& variant, VARTYPE type, std::initializer_list<SAFEARRAYBOUND> bounds) {
    std::vector<SAFEARRAYBOUND> list(bounds);
    variant.parray = SafeArrayCreate(type, static_cast<UINT>(list.size()), list.data());
    variant.vt = static_cast<VARTYPE>(VT_ARRAY | type);
}

// Elements are null, because nothing is stored in them.
void AddArrays(std::vector<NamedLie>& lies) {
    lies.push_back(Typed("array-empty", [](VARIANT& variant) { PutArray(variant, VT_BSTR, {{0, 0}}); }));
    lies.push_back(Typed("array-of-nulls", [](VARIANT& variant) { PutArray(variant, VT_BSTR, {{3, 0}}); }));
    lies.push_back(Typed("array-below-zero", [](VARIANT& variant) {
        PutArray(variant, VT_BSTR, {{3, -2}});
    }));
    lies.push_back(Typed("array-at-the-end", [](VARIANT& variant) {
        PutArray(variant, VT_BSTR, {{2, 0x7FFFFFFE}});
    }));
    lies.push_back(Typed("array-of-two", [](VARIANT& variant) {
        PutArray(variant, VT_BSTR, {{2, 0}, {3, 0}});
    }));
    lies.push_back(Typed("array-of-numbers", [](VARIANT& variant) { PutArray(variant, VT_I4, {{4, 0}}); }));
    lies.push_back(Typed("array-of-bytes", [](VARIANT& variant) { PutArray(variant, VT_UI1, {{5, 0}}); }));
    lies.push_back(Typed("array-of-variants", [](VARIANT& variant) {
        PutArray(variant, VT_VARIANT, {{2, 0}});
    }));
    // Sets the type that the array already has.
    lies.push_back(Typed("array-that-lies", [](VARIANT& variant) {
        PutArray(variant, VT_UI1, {{3, 0}});
        variant.vt = VT_ARRAY | VT_UI1;
    }));
    lies.push_back(Typed("array-long", [](VARIANT& variant) { PutArray(variant, VT_BSTR, {{10'000, 0}}); }));
}

}  // namespace

void AddVariantLies(std::vector<NamedLie>& lies) {
    AddPlainTypes(lies);
    AddTexts(lies);
    AddArrays(lies);
}

}  // namespace faults
