#pragma once

#include "machine/com_object.h"
#include "machine/wmi_unsupported.h"

#include <string>

namespace machine {

// A connection to the described machine's "root\cimv2". Security settings are accepted but have no effect.
class WmiServices final : public ComObject<UnsupportedServices> {
public:
    WmiServices();

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context, IEnumWbemClassObject** enumerator) override;

protected:
    void* Offer(REFIID iid) override;

private:
    // The object's IClientSecurity interface. Uses the object's reference count and QueryInterface.
    class Security final : public IClientSecurity {
    public:
        explicit Security(WmiServices& owner) : owner_(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
        ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }
        HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authentication, DWORD* authorisation,
                                               OLECHAR** principal, DWORD* level, DWORD* impersonation,
                                               void** identity, DWORD* capabilities) override;
        HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authentication, DWORD authorisation,
                                             OLECHAR* principal, DWORD level, DWORD impersonation,
                                             void* identity, DWORD capabilities) override;
        HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* proxy, IUnknown** copy) override;

    private:
        WmiServices& owner_;
    };

    Security security_{*this};
};

// The class name in a query "select ... from CLASS"; empty if the query has another form.
std::wstring QueriedClass(const std::wstring& query);

}  // namespace machine
