#include "common/platform/com_enabler.h"

#include "common/logger/orvane_logger.h"
#include "common/windows.h"

#include <objbase.h>

namespace bmr_common {

namespace {

// COM security is process-wide and is set once: retried until it first succeeds. No lock: calls come from one
// thread at a time.
bool g_security_initialized = false;

bool InitializeSecurity(const wchar_t* caller) {
    if (g_security_initialized) {
        return true;
    }
    const HRESULT result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    if (FAILED(result) && result != RPC_E_TOO_LATE) {
        GetLogger().Write(kLogError,
                          L"InitializeCOM: CoInitializeSecurity failed error=0x%lx calling function %s",
                          result, caller);
        return false;
    }
    g_security_initialized = true;
    return true;
}

}  // namespace

COMEnabler::~COMEnabler() {
    if (initialized_) {
        CoUninitialize();
    }
}

bool COMEnabler::InitializeCOM(const wchar_t* caller) {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (result == RPC_E_CHANGED_MODE) {
        GetLogger().Write(kLogTrace, L"CoInitializeEx error=RPC_E_CHANGED_MODE calling function %s", caller);
    } else if (result != S_OK && result != S_FALSE) {
        GetLogger().Write(kLogError, L"CoInitializeEx failed error=0x%lx calling function %s", result,
                          caller);
        return false;
    }
    // Passes this function's name instead of the caller's: compatibility C19
    if (!InitializeSecurity(L"bmr_common::COMEnabler::InitializeCOM")) {
        CoUninitialize();
        return false;
    }
    // Also set after RPC_E_CHANGED_MODE: compatibility C128
    initialized_ = true;
    return true;
}

}  // namespace bmr_common
