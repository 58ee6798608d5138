#include "com_calls.h"

ComCalls::ComCalls()
    : initialize_("CoInitializeEx", &::CoInitializeEx,
                  [this](void* reserved, DWORD flags) -> HRESULT {
                      reserved_passed = reserved_passed || reserved != nullptr;
                      initialized.push_back(flags);
                      return initialize_result;
                  }),
      initialize_security_(
          "CoInitializeSecurity", &::CoInitializeSecurity,
          [this](void* descriptor, LONG services, SOLE_AUTHENTICATION_SERVICE* list, void* reserved,
                 DWORD authentication, DWORD impersonation, void* authentication_list, DWORD capabilities,
                 void* reserved_too) -> HRESULT {
              ++security_calls;
              security = {descriptor != nullptr || list != nullptr || reserved != nullptr ||
                              authentication_list != nullptr || reserved_too != nullptr,
                          services, authentication, impersonation, capabilities};
              return security_result;
          }),
      uninitialize_("CoUninitialize", &::CoUninitialize, [this] { ++uninitialized; }) {}
