#pragma once

#include "machine/com_object.h"
#include "machine/wmi_unsupported.h"

namespace machine {

// The WMI locator of the described machine; its IUnknown is the locator interface itself.
class WmiLocator final : public ComObject<IWbemLocator> {
public:
    WmiLocator();

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** services) override;
};

// Puts the locator classes of this apartment on the simulation for its lifetime. The thread must have COM,
// and must be the same at both ends.
class WmiRegistration {
public:
    // Throws std::runtime_error.
    WmiRegistration();
    ~WmiRegistration();

    WmiRegistration(const WmiRegistration&) = delete;
    WmiRegistration& operator=(const WmiRegistration&) = delete;

private:
    DWORD administrative_ = 0;
    DWORD common_ = 0;
};

}  // namespace machine
