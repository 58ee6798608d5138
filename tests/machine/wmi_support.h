#pragma once

#include "machine/session/session.h"
#include "machine/test_machine.h"

#include <comdef.h>
#include <gtest/gtest.h>
#include <wbemidl.h>

#include <memory>
#include <string>

namespace machine_test {

using Services = _com_ptr_t<_com_IIID<IWbemServices, &IID_IWbemServices>>;
using Enumerator = _com_ptr_t<_com_IIID<IEnumWbemClassObject, &IID_IEnumWbemClassObject>>;
using Instance = _com_ptr_t<_com_IIID<IWbemClassObject, &IID_IWbemClassObject>>;

constexpr CLSID kAdministrativeLocator = {
    0xCB8555CC, 0x9128, 0x11D1, {0xAD, 0x9B, 0x00, 0xC0, 0x4F, 0xD8, 0xFD, 0xFF}};
constexpr auto kNotFound = static_cast<HRESULT>(0x80041002);
constexpr auto kInvalidNamespace = static_cast<HRESULT>(0x8004100E);
constexpr auto kInvalidClass = static_cast<HRESULT>(0x80041010);
constexpr auto kInvalidOperation = static_cast<HRESULT>(0x80041016);
constexpr auto kInvalidQuery = static_cast<HRESULT>(0x80041017);
constexpr auto kInvalidQueryType = static_cast<HRESULT>(0x80041018);
constexpr auto kInvalidParameter = static_cast<HRESULT>(0x80041008);
constexpr auto kServerUnavailable = static_cast<HRESULT>(0x800706BA);
constexpr HRESULT kEnd = 1;                // WBEM_S_FALSE
constexpr HRESULT kTimedOut = 0x00040004;  // WBEM_S_TIMEDOUT
constexpr LONG kReturnImmediately = 16;

class Bstr {
public:
    explicit Bstr(const wchar_t* text) : text_(SysAllocString(text)) {}
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    operator BSTR() const { return text_; }

private:
    BSTR text_;
};

// Connects as the library does: uses the IUnknown as the locator, without QueryInterface.
inline HRESULT Connect(Services& services, const wchar_t* path = L"root\\cimv2") {
    IUnknown* unknown = nullptr;
    HRESULT result =
        CoCreateInstance(kAdministrativeLocator, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                         IID_IUnknown, reinterpret_cast<void**>(&unknown));
    if (FAILED(result)) {
        return result;
    }
    auto* locator = static_cast<IWbemLocator*>(unknown);
    IWbemServices* made = nullptr;
    result = locator->ConnectServer(Bstr(path), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &made);
    services.Attach(made);
    locator->Release();
    return result;
}

inline HRESULT Query(Services& services, Enumerator& enumerator, const wchar_t* text,
                     LONG flags = kReturnImmediately, const wchar_t* language = L"WQL") {
    IEnumWbemClassObject* made = nullptr;
    const HRESULT result = services->ExecQuery(Bstr(language), Bstr(text), flags, nullptr, &made);
    enumerator.Attach(made);
    return result;
}

inline HRESULT Fetch(Enumerator& enumerator, Instance& instance) {
    IWbemClassObject* object = nullptr;
    ULONG returned = 0;
    const HRESULT result = enumerator->Next(-1, 1, &object, &returned);
    EXPECT_EQ(returned, object == nullptr ? 0u : 1u);
    instance.Attach(object);
    return result;
}

class Wmi : public testing::Test {
protected:
    void Start(const std::string& json) {
        session_ = std::make_unique<machine::Session>(Parse(json));
        ASSERT_EQ(Connect(services_), S_OK);
    }

    machine::Simulation& simulation() { return session_->simulation(); }

    // Fetches the first instance of the class.
    void First(const wchar_t* class_name) {
        enumerator_ = nullptr;
        ASSERT_EQ(Query(services_, enumerator_, (std::wstring(L"Select * from ") + class_name).c_str()),
                  S_OK);
        ASSERT_EQ(Fetch(enumerator_, instance_), S_OK);
    }

    _variant_t Value(const wchar_t* name) {
        _variant_t value;
        EXPECT_EQ(instance_->Get(name, 0, &value, nullptr, nullptr), S_OK) << name;
        return value;
    }

    void TearDown() override {
        instance_ = nullptr;
        enumerator_ = nullptr;
        services_ = nullptr;
        if (session_) {
            EXPECT_EQ(simulation().live_objects(), 0u);
        }
    }

    std::unique_ptr<machine::Session> session_;
    Services services_;
    Enumerator enumerator_;
    Instance instance_;
};

}  // namespace machine_test
