#include "bench/wmi_script.h"

#include "common/platform/com_pointer.h"

#include <wbemidl.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

using Locator = ComPointer<IWbemLocator, &IID_IWbemLocator>;
using Services = ComPointer<IWbemServices, &IID_IWbemServices>;
using Enumerator = ComPointer<IEnumWbemClassObject, &IID_IEnumWbemClassObject>;
using Object = ComPointer<IWbemClassObject, &IID_IWbemClassObject>;

constexpr CLSID kAdministrativeLocator = {
    0xcb8555cc, 0x9128, 0x11d1, {0xad, 0x9b, 0x00, 0xc0, 0x4f, 0xd8, 0xfd, 0xff}};

// The objects of one query, from its locator to the current object.
struct Cursor {
    Locator locator;
    Services services;
    Enumerator enumerator;
    Object object;
};

// Secures the services before the query, and its enumerator after it.
void Secure(const Cursor& cursor) {
    IUnknown* proxy = cursor.services;
    if (cursor.enumerator != nullptr) {
        proxy = cursor.enumerator;
    }
    CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                      RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

void Get(const Cursor& cursor, const wchar_t* property) {
    VARIANT value;
    VariantInit(&value);
    if (cursor.object != nullptr) {
        cursor.object->Get(property, 0, &value, nullptr, nullptr);
    }
    VariantClear(&value);
}

}  // namespace

WmiScript::WmiScript(const std::vector<machine::CallRecord>& records)
    : name_space_(SysAllocString(L"root\\cimv2")), language_(SysAllocString(L"WQL")) {
    const std::pair<const char*, Step> kSteps[] = {{"IClassFactory::CreateInstance", Step::kLocator},
                                                   {"IWbemLocator::ConnectServer", Step::kConnect},
                                                   {"IClientSecurity::SetBlanket", Step::kBlanket},
                                                   {"IWbemServices::ExecQuery", Step::kQuery},
                                                   {"IEnumWbemClassObject::Reset", Step::kReset},
                                                   {"IEnumWbemClassObject::Next", Step::kNext},
                                                   {"IWbemClassObject::Get", Step::kGet}};
    for (const machine::CallRecord& record : records) {
        if (record.family != machine::CallFamily::kCom) {
            continue;
        }
        const auto* const step = std::find_if(std::begin(kSteps), std::end(kSteps),
                                              [&](const auto& each) { return record.name == each.first; });
        if (step == std::end(kSteps)) {
            throw std::logic_error("a call of another kind: " + record.name);
        }
        // A property is recorded as "CLASS.PROPERTY".
        const std::size_t dot = record.object.find(L'.');
        const std::wstring text = step->second == Step::kQuery ? L"Select * from " + record.object
                                  : dot == std::wstring::npos  ? record.object
                                                               : record.object.substr(dot + 1);
        calls_.push_back({step->second, UniqueBstr(SysAllocString(text.c_str()))});
    }
}

void WmiScript::Play() const {
    Cursor cursor;
    ULONG count = 0;
    for (const Call& call : calls_) {
        switch (call.step) {
            case Step::kLocator:
                cursor = Cursor();
                CoCreateInstance(kAdministrativeLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                 reinterpret_cast<void**>(&cursor.locator));
                break;
            case Step::kConnect:
                cursor.locator->ConnectServer(name_space_.get(), nullptr, nullptr, nullptr, 0, nullptr,
                                              nullptr, &cursor.services);
                break;
            case Step::kBlanket:
                Secure(cursor);
                break;
            case Step::kQuery:
                cursor.services->ExecQuery(language_.get(), call.text.get(), WBEM_FLAG_RETURN_IMMEDIATELY,
                                           nullptr, &cursor.enumerator);
                break;
            case Step::kReset:
                cursor.enumerator->Reset();
                break;
            case Step::kNext:
                cursor.object = nullptr;
                cursor.enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, &cursor.object, &count);
                break;
            case Step::kGet:
                Get(cursor, call.text.get());
                break;
        }
    }
}

}  // namespace bench
