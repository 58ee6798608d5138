#pragma once

#include "machine/wmi/com_object.h"
#include "machine/wmi/wmi_unsupported.h"

namespace machine {

// The WMI locator of the described machine. Its IWbemLocator pointer is also its IUnknown.
class WmiLocator final : public ComObject<IWbemLocator> {
public:
    WmiLocator();

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** services) override;
};

// Registers simulated class objects for the WMI locator classes in this apartment for its lifetime. COM must
// be initialised on the thread. Create and destroy it on the same thread.
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
