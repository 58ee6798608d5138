#include "machine/wmi/wmi_security.h"

#include "machine/wmi/com_object.h"

namespace machine {

HRESULT STDMETHODCALLTYPE ProxySecurity::QueryInterface(REFIID iid, void** object) {
    return owner_.QueryInterface(iid, object);
}

HRESULT STDMETHODCALLTYPE ProxySecurity::QueryBlanket(IUnknown* /*proxy*/, DWORD* authentication,
                                                      DWORD* authorisation, OLECHAR** principal, DWORD* level,
                                                      DWORD* impersonation, void** identity,
                                                      DWORD* capabilities) {
    for (DWORD* number : {authentication, authorisation, level, impersonation, capabilities}) {
        if (number != nullptr) {
            *number = 0;
        }
    }
    if (principal != nullptr) {
        *principal = nullptr;
    }
    if (identity != nullptr) {
        *identity = nullptr;
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ProxySecurity::SetBlanket(IUnknown* /*proxy*/, DWORD /*authentication*/,
                                                    DWORD /*authorisation*/, OLECHAR* /*principal*/,
                                                    DWORD /*level*/, DWORD /*impersonation*/,
                                                    void* /*identity*/, DWORD /*capabilities*/) {
    const HRESULT result = PerformCom("IClientSecurity::SetBlanket", {}, nullptr, [] { return Answer{}; });
    is_set_ = is_set_ || SUCCEEDED(result);
    return result;
}

HRESULT STDMETHODCALLTYPE ProxySecurity::CopyProxy(IUnknown* proxy, IUnknown** copy) {
    if (proxy == nullptr || copy == nullptr) {
        return E_INVALIDARG;
    }
    proxy->AddRef();
    *copy = proxy;
    return S_OK;
}

}  // namespace machine
