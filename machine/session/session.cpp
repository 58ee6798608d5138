#include "machine/session/session.h"

#include "machine/session/absent_xml_component.h"
#include "machine/session/registry_override.h"
#include "machine/wmi/wmi_locator.h"

#include <ole2.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace machine {

class Session::ComScope {
public:
    explicit ComScope(SessionCom com) : ours_(com != SessionCom::kCallers) {
        if (!ours_) {
            return;
        }
        const HRESULT result = CoInitializeEx(
            nullptr, com == SessionCom::kMultithreaded ? COINIT_MULTITHREADED : COINIT_APARTMENTTHREADED);
        if (FAILED(result)) {
            throw std::runtime_error("COM cannot be initialised, error " +
                                     std::to_string(static_cast<std::uint32_t>(result)));
        }
    }
    ~ComScope() {
        if (ours_) {
            CoUninitialize();
        }
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    bool ours_;
};

Session::Session(Description description, SessionCom com)
    : simulation_(std::move(description)),
      com_(std::make_unique<ComScope>(com)),
      wmi_(std::make_unique<WmiRegistration>()),
      absent_xml_(simulation_.machine().xml_component ? nullptr : std::make_unique<AbsentXmlComponent>()),
      registry_(std::make_unique<RegistryOverride>(simulation_.machine().registry)) {}

Session::~Session() = default;

}  // namespace machine
