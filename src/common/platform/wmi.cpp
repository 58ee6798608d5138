#include "common/platform/wmi.h"

#include "common/logger/orvane_logger.h"
#include "common/platform/unique_bstr.h"

#include <cstring>
#include <exception>

namespace {

constexpr CLSID kAdministrativeLocator = {
    0xcb8555cc, 0x9128, 0x11d1, {0xad, 0x9b, 0x00, 0xc0, 0x4f, 0xd8, 0xfd, 0xff}};

// The maximum number of objects of a query, so that an endless enumerator ends. No class of a real machine
// has so many instances.
constexpr unsigned kMostObjects = 100'000;

// Logs a failed step and returns its result.
HRESULT Checked(HRESULT result, const wchar_t* message) {
    if (FAILED(result)) {
        GetLogger().Write(kLogError, message, result);
    }
    return result;
}

// Sets how the calls of a proxy are authenticated.
HRESULT SetSecurity(IUnknown* proxy) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

// Turns a success with a null pointer into a failure.
template <class Pointer>
HRESULT Delivered(HRESULT result, const Pointer& pointer) {
    return SUCCEEDED(result) && pointer == nullptr ? E_POINTER : result;
}

bool IsInteger(VARTYPE type) {
    return type == VT_I4 || type == VT_INT || type == VT_UINT;
}

int WholeInteger(const VARIANT& value) {
    switch (value.vt) {
        case VT_I2:
        case VT_BOOL:
            return value.iVal;
        case VT_UI2:
            return value.uiVal;
        case VT_UI4:
            return static_cast<int>(value.ulVal);
        default:
            return IsInteger(value.vt) ? value.intVal : 0;
    }
}

// Returns only the low 16 bits of an unsigned 32-bit number: compatibility C73
int LowInteger(const VARIANT& value) {
    return value.vt == VT_UI4 ? static_cast<int>(value.ulVal & 0xFFFFU) : WholeInteger(value);
}

// Locks a one-dimensional array of strings for the duration of a scope.
class ArrayAccess {
public:
    explicit ArrayAccess(SAFEARRAY* array)
        : array_(array),
          locked_(SUCCEEDED(SafeArrayAccessData(array, reinterpret_cast<void**>(&elements_)))) {}
    ~ArrayAccess() {
        if (locked_) {
            SafeArrayUnaccessData(array_);
        }
    }
    ArrayAccess(const ArrayAccess&) = delete;
    ArrayAccess& operator=(const ArrayAccess&) = delete;

    // Null if the array could not be accessed.
    const BSTR* elements() const { return locked_ ? elements_ : nullptr; }

private:
    BSTR* elements_ = nullptr;
    SAFEARRAY* array_;
    bool locked_;
};

// Runs `take`. Returns false if it throws, which means out of memory.
template <class Take>
bool WithoutThrowing(Take&& take) {
    try {
        take();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void AppendStrings(SAFEARRAY* array, std::vector<std::wstring>& list) {
    LONG lower = 0;
    LONG upper = -1;
    if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(array, 1, &upper))) {
        return;
    }
    const ArrayAccess access(array);
    if (access.elements() == nullptr) {
        return;
    }
    const auto count = static_cast<long long>(upper) - lower + 1;
    for (long long i = 0; i < count; ++i) {
        list.emplace_back(TextOf(access.elements()[i]));
    }
}

}  // namespace

CWmi::CWmi(const wchar_t* query) {
    HRESULT result = Connect();
    if (SUCCEEDED(result)) {
        const UniqueBstr language(SysAllocString(L"WQL"));
        const UniqueBstr text(SysAllocString(query));
        result = language && text ? services_->ExecQuery(language.get(), text.get(),
                                                         WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, &enumerator_)
                                  : E_OUTOFMEMORY;
        result = Checked(Delivered(result, enumerator_), L"CWmi::CWmi ExecQuery failed error 0x%x");
    }
    initialized_ = SUCCEEDED(result);
    if (initialized_) {
        // The enumerator is a proxy of its own, with the security of the process. If this fails, a system
        // that needs it refuses the first object.
        SetSecurity(enumerator_);
    }
}

HRESULT CWmi::Connect() {
    // Requested as IUnknown and used without QueryInterface: compatibility C127
    HRESULT result =
        CoCreateInstance(kAdministrativeLocator, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                         IID_IUnknown, reinterpret_cast<void**>(&locator_));
    result = Checked(Delivered(result, locator_), L"CWmi::CWmi CoCreateInstance failed error 0x%x");
    if (FAILED(result)) {
        return result;
    }
    const UniqueBstr name_space(SysAllocString(L"root\\cimv2"));
    result = name_space ? locator_->ConnectServer(name_space.get(), nullptr, nullptr, nullptr, 0, nullptr,
                                                  nullptr, &services_)
                        : E_OUTOFMEMORY;
    result = Checked(Delivered(result, services_), L"CWmi::CWmi ConnectServer failed error 0x%x");
    if (FAILED(result)) {
        return result;
    }
    return Checked(SetSecurity(services_), L"CWmi::CWmi CoSetProxyBlanket failed error 0x%x");
}

bool CWmi::Fetch() {
    current_ = nullptr;
    if (++fetched_ > kMostObjects) {
        GetLogger().Write(kLogError, L"CWmi::Fetch gave up after %u objects", kMostObjects);
        return false;
    }
    ULONG returned = 0;
    const HRESULT result = enumerator_->Next(static_cast<LONG>(WBEM_INFINITE), 1, &current_, &returned);
    if (result != WBEM_S_NO_ERROR) {
        current_ = nullptr;
    }
    return result == WBEM_S_NO_ERROR && current_ != nullptr;
}

bool CWmi::FindFirstObject() {
    return initialized_ && enumerator_ != nullptr && enumerator_->Reset() == WBEM_S_NO_ERROR && Fetch();
}

bool CWmi::FindNextObject() {
    return enumerator_ != nullptr && Fetch();
}

bool CWmi::ReadProperty(const wchar_t* property, _variant_t& value) {
    return current_ != nullptr && SUCCEEDED(current_->Get(property, 0, &value, nullptr, nullptr));
}

bool CWmi::Get(const wchar_t* property, int& value) {
    if (current_ == nullptr) {
        return false;
    }
    value = 0;
    _variant_t read;
    if (!ReadProperty(property, read)) {
        return false;
    }
    value = WholeInteger(read);
    return true;
}

bool CWmi::Get(const wchar_t* property, std::wstring& value) {
    _variant_t read;
    if (!ReadProperty(property, read)) {
        return false;
    }
    return WithoutThrowing([&] {
        if (read.vt == VT_BSTR) {
            value = TextOf(read.bstrVal);
        }
    });
}

bool CWmi::Get(const wchar_t* property, std::vector<std::wstring>& value) {
    _variant_t read;
    if (!ReadProperty(property, read)) {
        return false;
    }
    return WithoutThrowing([&] {
        if (read.vt == (VT_ARRAY | VT_BSTR)) {
            AppendStrings(read.parray, value);
        }
    });
}

bool CWmi::GetLowInteger(const wchar_t* property, int& value) {
    _variant_t read;
    if (!ReadProperty(property, read)) {
        return false;
    }
    value = LowInteger(read);
    return true;
}
