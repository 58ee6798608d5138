#include "machine/recorder/observe/ask_calls.h"
#include "machine/recorder/observe/com_values.h"
#include "machine/recorder/observe/wmi_types.h"

#include <ole2.h>
#include <wbemidl.h>

namespace recorder {
namespace {

constexpr CLSID kAdministrativeLocator = {
    0xCB8555CC, 0x9128, 0x11D1, {0xAD, 0x9B, 0x00, 0xC0, 0x4F, 0xD8, 0xFD, 0xFF}};

class OwnVariant {
public:
    OwnVariant() { VariantInit(&value_); }
    ~OwnVariant() { VariantClear(&value_); }
    OwnVariant(const OwnVariant&) = delete;
    OwnVariant& operator=(const OwnVariant&) = delete;

    VARIANT* put() { return &value_; }
    const VARIANT& get() const { return value_; }

private:
    VARIANT value_{};
};

class OwnArray {
public:
    ~OwnArray() {
        if (array_ != nullptr) {
            SafeArrayDestroy(array_);
        }
    }
    OwnArray() = default;
    OwnArray(const OwnArray&) = delete;
    OwnArray& operator=(const OwnArray&) = delete;

    SAFEARRAY** put() { return &array_; }
    SAFEARRAY* get() const { return array_; }

private:
    SAFEARRAY* array_ = nullptr;
};

// Calls `visit` with the address and the number of the elements of a one-dimensional array, if they have this
// type. The value that holds an array may say another one.
template <class Visit>
void VisitElements(SAFEARRAY* array, VARTYPE type, Visit visit) {
    LONG lower = 0;
    LONG upper = -1;
    void* data = nullptr;
    VARTYPE own_type = VT_EMPTY;
    if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &own_type)) ||
        own_type != type || FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(array, 1, &upper)) || upper < lower ||
        FAILED(SafeArrayAccessData(array, &data))) {
        return;
    }
    visit(data, static_cast<std::size_t>(static_cast<long long>(upper) - lower + 1));
    SafeArrayUnaccessData(array);
}

std::vector<std::wstring> TextsIn(SAFEARRAY* array) {
    std::vector<std::wstring> texts;
    VisitElements(array, VT_BSTR, [&](const void* data, std::size_t count) {
        const auto* elements = static_cast<const BSTR*>(data);
        for (std::size_t i = 0; i < count; ++i) {
            texts.emplace_back(ViewOf(elements[i]));
        }
    });
    return texts;
}

// Each text with a terminator.
Bytes BytesOfTexts(const std::vector<std::wstring>& texts) {
    Bytes bytes;
    for (const std::wstring& text : texts) {
        const Bytes more = BytesOfText({text.c_str(), text.size() + 1});
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    return bytes;
}

std::uint64_t SignedNumber(std::int64_t number) {
    return static_cast<std::uint64_t>(number);
}

std::uint64_t NumberIn(const VARIANT& value) {
    switch (value.vt) {
        case VT_BOOL:
            return value.boolVal != VARIANT_FALSE ? 1 : 0;
        case VT_I1:
            return SignedNumber(static_cast<signed char>(value.cVal));
        case VT_UI1:
            return value.bVal;
        case VT_I2:
            return SignedNumber(value.iVal);
        case VT_UI2:
            return value.uiVal;
        case VT_I4:
        case VT_INT:
            return SignedNumber(value.lVal);
        case VT_UI4:
        case VT_UINT:
            return value.ulVal;
        case VT_I8:
        case VT_UI8:
            return value.ullVal;
        default:
            return 0;
    }
}

void StoreValue(const VARIANT& value, Part& part) {
    const WmiType* type = FindWmiType(value.vt);
    part.type = type == nullptr ? std::to_wstring(value.vt) : type->name;
    if (value.vt == VT_BSTR) {
        part.bytes = BytesOfText(ViewOf(value.bstrVal));
    } else if (value.vt == (VT_ARRAY | VT_BSTR)) {
        part.bytes = BytesOfTexts(TextsIn(value.parray));
    } else if (value.vt == VT_R4 || value.vt == VT_R8) {
        const double real = value.vt == VT_R4 ? static_cast<double>(value.fltVal) : value.dblVal;
        const auto* first = reinterpret_cast<const std::uint8_t*>(&real);
        part.bytes.assign(first, first + sizeof(real));
    } else if (type != nullptr && type->element_bytes != 0) {
        VisitElements(value.parray, value.vt & VT_TYPEMASK, [&](const void* data, std::size_t count) {
            const auto* first = static_cast<const std::uint8_t*>(data);
            part.bytes.assign(first, first + count * type->element_bytes);
        });
    } else {
        part.value = NumberIn(value);
    }
}

HRESULT SetSecurity(IUnknown* proxy) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

// A query on one class. After the constructor either `enumerator` is set or `failure` says why not.
struct Query {
    explicit Query(const std::wstring& class_name) {
        void* made = nullptr;
        if (Failed("IClassFactory::CreateInstance",
                   CoCreateInstance(kAdministrativeLocator, nullptr,
                                    CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IWbemLocator, &made))) {
            return;
        }
        locator.reset(static_cast<IWbemLocator*>(made));
        IWbemServices* connected = nullptr;
        if (Failed("IWbemLocator::ConnectServer",
                   locator->ConnectServer(ComTextOf(L"root\\cimv2").get(), nullptr, nullptr, nullptr, 0,
                                          nullptr, nullptr, &connected))) {
            return;
        }
        services.reset(connected);
        if (Failed("IClientSecurity::SetBlanket", SetSecurity(services.get()))) {
            return;
        }
        IEnumWbemClassObject* found = nullptr;
        if (!Failed(
                "IWbemServices::ExecQuery",
                services->ExecQuery(ComTextOf(L"WQL").get(), ComTextOf(L"Select * from " + class_name).get(),
                                    WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, &found))) {
            enumerator.reset(found);
        }
    }

    bool Failed(const char* step, HRESULT result) {
        if (FAILED(result)) {
            failure = Failure(static_cast<std::uint32_t>(result), step);
        }
        return FAILED(result);
    }

    Pointer<IWbemLocator> locator;
    Pointer<IWbemServices> services;
    Pointer<IEnumWbemClassObject> enumerator;
    Answer failure;
};

void AddProperties(IWbemClassObject& object, std::uint32_t instance, std::vector<Part>& parts) {
    OwnArray names;
    if (FAILED(object.GetNames(nullptr, WBEM_FLAG_ALWAYS | WBEM_FLAG_NONSYSTEM_ONLY, nullptr, names.put()))) {
        return;
    }
    for (const std::wstring& name : TextsIn(names.get())) {
        Part part;
        part.instance = instance;
        part.name = name;
        OwnVariant value;
        const HRESULT result = object.Get(name.c_str(), 0, value.put(), nullptr, nullptr);
        if (FAILED(result)) {
            part.error = static_cast<std::uint32_t>(result);
        } else {
            StoreValue(value.get(), part);
        }
        parts.push_back(std::move(part));
    }
}

// Fetches the next object; null at the end and after a failure.
Pointer<IWbemClassObject> NextObject(IEnumWbemClassObject& enumerator, HRESULT& result) {
    IWbemClassObject* object = nullptr;
    ULONG returned = 0;
    result = enumerator.Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned);
    return Pointer<IWbemClassObject>(object);
}

}  // namespace

// All objects with all their properties, fetched as the library does it. The value is the number of objects.
Answer AskWmiClass(const SystemFunctions& /*functions*/, const Question& question) {
    Query query(question.object);
    if (!query.enumerator) {
        return query.failure;
    }
    SetSecurity(query.enumerator.get());  // if this fails, Next tells
    if (query.Failed("IEnumWbemClassObject::Reset", query.enumerator->Reset())) {
        return query.failure;
    }
    Answer answer;
    HRESULT result = S_OK;
    while (const auto object = NextObject(*query.enumerator, result)) {
        AddProperties(*object, static_cast<std::uint32_t>(answer.value), answer.parts);
        ++answer.value;
        if (answer.parts.size() >= kMostParts || answer.value >= kMostParts) {
            result = static_cast<HRESULT>(WBEM_E_FAILED);
            break;
        }
    }
    if (FAILED(result)) {
        answer.error = static_cast<std::uint32_t>(result);
        answer.step = "IEnumWbemClassObject::Next";
    }
    return answer;
}

// Whether objects come from an enumerator whose own security is not set.
Answer AskWmiWithoutSecurity(const SystemFunctions& /*functions*/, const Question& question) {
    Query query(question.object);
    if (!query.enumerator) {
        return query.failure;
    }
    HRESULT result = S_OK;
    NextObject(*query.enumerator, result);
    return FAILED(result) ? Failure(static_cast<std::uint32_t>(result)) : Answer{};
}

}  // namespace recorder
