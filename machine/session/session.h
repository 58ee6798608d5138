#pragma once

#include "machine/description/description.h"
#include "machine/simulation/simulation.h"

#include <memory>

namespace machine {

class AbsentXmlComponent;
class RegistryOverride;
class WmiRegistration;

// The COM apartment in which a session puts its thread for its lifetime. kCallers: the caller has already
// initialised COM.
enum class SessionCom { kApartment, kMultithreaded, kCallers };

// Runs a described machine for the calling thread: the simulation, WMI and, if it is absent, the XML
// component in this apartment, and HKEY_LOCAL_MACHINE of this process. Create and destroy a session on the
// same thread. Modules are redirected separately (PutModuleOnSimulation).
class Session {
public:
    // Throws std::runtime_error if COM, the WMI registration or the registry fails, and std::logic_error if
    // another simulation is current.
    explicit Session(Description description, SessionCom com = SessionCom::kApartment);
    ~Session();

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Simulation& simulation() noexcept { return simulation_; }

private:
    class ComScope;

    Simulation simulation_;
    std::unique_ptr<ComScope> com_;
    std::unique_ptr<WmiRegistration> wmi_;
    std::unique_ptr<AbsentXmlComponent> absent_xml_;
    std::unique_ptr<RegistryOverride> registry_;
};

}  // namespace machine
