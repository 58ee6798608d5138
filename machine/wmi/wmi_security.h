#pragma once

#include "common/windows.h"

#include <objidl.h>

namespace machine {

// The IClientSecurity interface of a simulated proxy. Uses the proxy's reference count and QueryInterface.
// Accepts all settings and keeps only that some were set.
class ProxySecurity final : public IClientSecurity {
public:
    explicit ProxySecurity(IUnknown& owner) : owner_(owner) {}

    bool is_set() const noexcept { return is_set_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }
    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authentication, DWORD* authorisation,
                                           OLECHAR** principal, DWORD* level, DWORD* impersonation,
                                           void** identity, DWORD* capabilities) override;
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authentication, DWORD authorisation,
                                         OLECHAR* principal, DWORD level, DWORD impersonation, void* identity,
                                         DWORD capabilities) override;
    HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* proxy, IUnknown** copy) override;

private:
    IUnknown& owner_;
    bool is_set_ = false;
};

}  // namespace machine
