#pragma once

#include "machine/description/description.h"
#include "machine/simulation/call_log.h"
#include "machine/simulation/fault_plan.h"
#include "machine/simulation/handle_table.h"
#include "machine/simulation/name_index.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace machine {

// A reference to the code that computes one answer. Neither copies it nor allocates memory.
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

// A described machine that answers system calls. It is the current simulation while it exists, and only one
// may exist at a time. The redirected functions (redirect.h) and the WMI objects (wmi_locator.h) query the
// current simulation. Not thread-safe: use it from one thread at a time.
class Simulation {
public:
    // Throws std::logic_error if another simulation is current.
    explicit Simulation(Description description);
    ~Simulation();

    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // Null if there is none; the redirected functions then call the real system.
    static Simulation* Current() noexcept;

    // The machine, for changes between calls. Request it again for every change: the request makes the next
    // call rebuild the name index.
    Description& description() noexcept;
    const Description& machine() const noexcept { return description_; }

    CallLog& calls() noexcept { return calls_; }
    FaultPlan& faults() noexcept { return faults_; }

    // The number of calls that failed with a described error. FaultPlan::hits() counts those of the fault
    // plan.
    std::size_t described_errors_met() const noexcept { return described_errors_met_; }

    // The number of files, volume searches and directories that are still open.
    std::size_t open_handles() const noexcept { return handles_.open(); }
    // The number of times a closed handle was used or closed again.
    std::size_t stale_handle_uses() const noexcept { return handles_.stale_uses(); }
    // The number of WMI objects that are not released yet.
    std::size_t live_objects() const noexcept;

    // Internal: for the other parts of the simulation.

    HandleTable& handles() noexcept { return handles_; }
    const NameIndex& names();
    Disk* FindDisk(std::uint32_t index);
    Volume* FindVolume(const std::wstring& device);
    // The described errors of the disk or volume that a path refers to; null if it refers to none.
    const CallErrors* ErrorsOf(const NameIndex::Target& target) const;
    // Keeps an object open. The answer's value is its handle.
    Answer Open(OpenObject object);
    // Closes what an answer opened before the fault plan failed it.
    void CloseIfFailed(const Answer& answer);
    const std::shared_ptr<std::size_t>& object_count() const noexcept { return object_count_; }

    struct Call {
        std::string name;
        std::wstring object;
        const CallErrors* errors = nullptr;  // described errors of the object
    };

    // Answers and records one call. The fault plan, or else the described errors, decide whether it fails;
    // otherwise `body` computes the answer. Then the actions of the fault plan change it. A std::bad_alloc
    // of the body becomes the family's out-of-memory code.
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
