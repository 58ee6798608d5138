#include "machine/wmi/wmi_instance.h"

#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"

#include <new>
#include <optional>
#include <utility>

namespace machine {
namespace {

constexpr std::uint32_t kNotFound = 0x80041002;          // WBEM_E_NOT_FOUND
constexpr std::uint32_t kInvalidParameter = 0x80041008;  // WBEM_E_INVALID_PARAMETER
constexpr HRESULT kNoMoreData = 0x00040005;              // WBEM_S_NO_MORE_DATA
constexpr CIMTYPE kCimArray = 0x2000;

BSTR TextOf(const std::wstring& text) {
    BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

SAFEARRAY* NewArray(VARTYPE type, std::size_t count) {
    SAFEARRAY* array = SafeArrayCreateVector(type, 0, static_cast<ULONG>(count));
    if (array == nullptr) {
        throw std::bad_alloc();
    }
    return array;
}

SAFEARRAY* ArrayOf(const std::vector<std::wstring>& texts) {
    SAFEARRAY* array = NewArray(VT_BSTR, texts.size());
    LONG index = 0;
    for (const std::wstring& text : texts) {
        BSTR element = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        const HRESULT result =
            element == nullptr ? E_OUTOFMEMORY : SafeArrayPutElement(array, &index, element);
        SysFreeString(element);
        if (FAILED(result)) {
            SafeArrayDestroy(array);
            throw std::bad_alloc();
        }
        ++index;
    }
    return array;
}

// Of integers. An element has the low bytes of its number.
SAFEARRAY* ArrayOf(VARTYPE type, const std::vector<std::int64_t>& numbers) {
    SAFEARRAY* array = NewArray(type, numbers.size());
    LONG index = 0;
    for (std::int64_t number : numbers) {
        if (FAILED(SafeArrayPutElement(array, &index, &number))) {
            SafeArrayDestroy(array);
            throw std::bad_alloc();
        }
        ++index;
    }
    return array;
}

struct CimOfVariant {
    VARTYPE variant;
    CIMTYPE cim;
};

constexpr CimOfVariant kCimTypes[] = {
    {VT_BOOL, 11}, {VT_I1, 16},   {VT_UI1, 17}, {VT_I2, 2},   {VT_UI2, 18}, {VT_I4, 19}, {VT_UI4, 19},
    {VT_INT, 3},   {VT_UINT, 19}, {VT_I8, 20},  {VT_UI8, 21}, {VT_R4, 4},   {VT_R8, 5},  {VT_BSTR, 8},
};

CIMTYPE CimTypeOf(VARTYPE type) {
    if ((type & VT_ARRAY) != 0) {
        return kCimArray | CimTypeOf(type & VT_TYPEMASK);
    }
    for (const CimOfVariant& row : kCimTypes) {
        if (row.variant == type) {
            return row.cim;
        }
    }
    return 8;  // null values: CIM_STRING, the type of most properties
}

std::optional<WmiValue> SystemProperty(const std::wstring& class_name, const std::wstring& name) {
    if (!EqualNames(name, L"__CLASS")) {
        return std::nullopt;
    }
    WmiValue value;
    value.type = VT_BSTR;
    value.text = class_name;
    return value;
}

}  // namespace

VARIANT VariantOf(const WmiValue& value) {
    VARIANT variant;
    VariantInit(&variant);
    switch (value.type) {
        case VT_BSTR:
            variant.bstrVal = TextOf(value.text);
            break;
        case VT_ARRAY | VT_BSTR:
            variant.parray = ArrayOf(value.texts);
            break;
        case VT_BOOL:
            variant.boolVal = value.number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
            break;
        case VT_R4:
            variant.fltVal = static_cast<float>(value.real);
            break;
        case VT_R8:
            variant.dblVal = value.real;
            break;
        default:
            if ((value.type & VT_ARRAY) != 0) {
                variant.parray = ArrayOf(value.type & VT_TYPEMASK, value.numbers);
            } else {
                variant.llVal = value.number;  // smaller types use its low bytes
            }
            break;
    }
    variant.vt = value.type;
    return variant;
}

WmiInstanceObject::WmiInstanceObject(std::shared_ptr<const WmiResult> result, std::size_t position)
    : ComObject(IID_IWbemClassObject), result_(std::move(result)), position_(position) {}

Answer WmiInstanceObject::Found(LPCWSTR name, LONG flags, VARIANT& variant, CIMTYPE& cim_type) const {
    if (name == nullptr || flags != 0) {  // flags are reserved and must be 0
        return Answer::Failure(kInvalidParameter);
    }
    const auto system = SystemProperty(result_->class_name, name);
    const WmiProperty* property = FindProperty(instance(), name);
    if (!system && property == nullptr) {
        return Answer::Failure(kNotFound);
    }
    const WmiValue& found = system ? *system : property->value;
    if (found.error) {
        return Answer::Failure(*found.error);
    }
    variant = VariantOf(found);
    cim_type = CimTypeOf(found.type);
    Answer answer;
    answer.variant = &variant;
    return answer;
}

HRESULT STDMETHODCALLTYPE WmiInstanceObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                                 LONG* flavor) {
    VARIANT variant;
    VariantInit(&variant);
    CIMTYPE cim_type = 0;
    const HRESULT result = GuardedCom([&] {
        const std::wstring object = result_->class_name + L"." + (name == nullptr ? L"" : name);
        return PerformCom("IWbemClassObject::Get", object, &result_->found.errors,
                          [&] { return Found(name, flags, variant, cim_type); });
    });
    if (FAILED(result) || value == nullptr) {
        VariantClear(&variant);
    } else {
        *value = variant;
    }
    if (SUCCEEDED(result) && type != nullptr) {
        *type = cim_type;
    }
    if (SUCCEEDED(result) && flavor != nullptr) {
        *flavor = 0;
    }
    return result;
}

HRESULT STDMETHODCALLTYPE WmiInstanceObject::GetNames(LPCWSTR /*qualifier*/, LONG /*flags*/,
                                                      VARIANT* /*value*/, SAFEARRAY** names) {
    if (names == nullptr) {
        return AsHresult(kInvalidParameter);
    }
    return GuardedCom([&] {
        std::vector<std::wstring> texts;
        for (const WmiProperty& property : instance()) {
            texts.push_back(property.name);
        }
        *names = ArrayOf(texts);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE WmiInstanceObject::BeginEnumeration(LONG /*flags*/) {
    next_property_ = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE WmiInstanceObject::Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                                  LONG* flavor) {
    if (next_property_ >= instance().size()) {
        return kNoMoreData;
    }
    const WmiProperty& property = instance()[next_property_];
    const HRESULT result = Get(property.name.c_str(), flags, value, type, flavor);
    if (FAILED(result)) {
        return result;
    }
    ++next_property_;
    if (name != nullptr) {
        *name = SysAllocString(property.name.c_str());
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE WmiInstanceObject::EndEnumeration() {
    return S_OK;
}

}  // namespace machine
