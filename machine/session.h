#pragma once

#include "machine/description.h"
#include "machine/simulation.h"

#include <memory>

namespace machine {

class RegistryOverride;
class WmiRegistration;

// Which COM apartment a session puts its thread in for its lifetime.
enum class SessionCom { kApartment, kMultithreaded, kCallers };

// A described machine under the calling thread: the simulation, WMI in this apartment, and
// HKEY_LOCAL_MACHINE of this process. For one thread; the session ends on the thread that began it. With
// kCallers the thread must have COM already. Modules are put on the simulation separately
// (PutModuleOnSimulation).
class Session {
public:
    // Throws std::runtime_error when COM or the registry refuse.
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
    std::unique_ptr<RegistryOverride> registry_;
};

}  // namespace machine
