#include "machine/wmi/wmi_unsupported.h"

#include "machine/wmi/com_object.h"

#include <string>

namespace machine {

HRESULT NotSupported(const char* interface_name, const char* method) noexcept {
    return GuardedCom([&] {
        const std::string name = std::string(interface_name) + "::" + method;
        return PerformCom(name.c_str(), {}, nullptr,
                          [] { return Answer::Failure(static_cast<std::uint32_t>(kWmiNotSupported)); });
    });
}

}  // namespace machine
