#pragma once

#include "machine/wmi/com_object.h"
#include "machine/wmi/wmi_security.h"
#include "machine/wmi/wmi_unsupported.h"

#include <string>

namespace machine {

// A connection to the described machine's "root\cimv2".
class WmiServices final : public ComObject<UnsupportedServices> {
public:
    WmiServices();

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context, IEnumWbemClassObject** enumerator) override;

protected:
    void* Offer(REFIID iid) override;

private:
    ProxySecurity security_{*this};
};

// The class name in a query "select ... from CLASS"; empty if the query has another form.
std::wstring QueriedClass(const std::wstring& query);

}  // namespace machine
