#pragma once

#include "machine/call_log.h"
#include "machine/description.h"
#include "machine/fault_plan.h"
#include "machine/handle_table.h"
#include "machine/name_index.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace machine {

// The code that computes one answer, without a copy of it and without memory of its own.
class AnswerBody {
public:
    template <class Body>
    AnswerBody(const Body& body) noexcept
        : body_(&body), call_([](const void* own) { return (*static_cast<const Body*>(own))(); }) {}

    Answer operator()() const { return call_(body_); }

private:
    const void* body_;
    Answer (*call_)(const void*);
};

// A described machine that answers system calls. While it lives it is the current one, of which there is one
// at a time; the redirected functions (redirect.h) and the WMI objects (wmi_locator.h) ask the current
// simulation. One thread at a time.
class Simulation {
public:
    // Throws std::logic_error when another simulation is current.
    explicit Simulation(Description description);
    ~Simulation();

    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // Null when there is none; the redirected functions then reach the real system.
    static Simulation* Current() noexcept;

    // The machine, for changing it between calls. Take it anew for every change: the names are indexed again
    // at the call that follows.
    Description& description() noexcept;
    const Description& machine() const noexcept { return description_; }

    CallLog& calls() noexcept { return calls_; }
    FaultPlan& faults() noexcept { return faults_; }

    // Calls that a described error has failed; those of the fault plan are FaultPlan::hits().
    std::size_t described_errors_met() const noexcept { return described_errors_met_; }

    // Files, volume searches and directories not yet closed.
    std::size_t open_handles() const noexcept { return handles_.open(); }
    // Closing or use of a handle that is closed already.
    std::size_t stale_handle_uses() const noexcept { return handles_.stale_uses(); }
    // WMI objects not yet released.
    std::size_t live_objects() const noexcept;

    // For the parts of the simulation.

    HandleTable& handles() noexcept { return handles_; }
    const NameIndex& names();
    Disk* FindDisk(std::uint32_t index);
    Volume* FindVolume(const std::wstring& device);
    const std::shared_ptr<std::size_t>& object_count() const noexcept { return object_count_; }

    struct Call {
        CallFamily family = CallFamily::kWin32;
        std::string name;
        std::wstring object;
        const CallErrors* errors = nullptr;  // of the object
    };

    // Answers one call: counts and records it, applies the fault plan and the described errors, and else
    // asks `body`. A std::bad_alloc of the body becomes the family's out-of-memory code.
    Answer Perform(const Call& call, const AnswerBody& body);

private:
    std::optional<std::uint32_t> DescribedError(const Call& call) const;

    Description description_;
    CallLog calls_;
    FaultPlan faults_;
    HandleTable handles_;
    NameIndex names_;
    bool names_valid_ = false;
    std::size_t described_errors_met_ = 0;
    std::shared_ptr<std::size_t> object_count_;
};

}  // namespace machine
