#pragma once

#include "common/windows.h"
#include "machine/simulation/simulation.h"

#include <cstdint>
#include <new>
#include <string>
#include <utility>

namespace machine {

// One call of a simulated function, while it is answered.
class CallFrame {
public:
    CallFrame(Simulation& simulation, const char* name) : simulation_(simulation), name_(name) {}

    // Adds a suffix to the call's name: "NAME:KIND".
    void SetKind(const std::string& kind) { name_ += ":" + kind; }

    Simulation& simulation() const noexcept { return simulation_; }
    const NameIndex& names() const { return simulation_.names(); }

    // Records the call on an object. The fault plan, or else the described errors, decide whether it fails;
    // otherwise `body` computes the answer. The last error becomes that of a Win32 answer when the function
    // returns.
    Answer Perform(std::wstring object, const CallErrors* errors, const AnswerBody& body) {
        Answer answer = simulation_.Perform({name_, std::move(object), errors}, body);
        error_ = answer.error;
        return answer;
    }

    // The same for the disk or volume that a path refers to.
    Answer Perform(std::wstring object, const NameIndex::Target& target, const AnswerBody& body) {
        return Perform(std::move(object), simulation_.ErrorsOf(target), body);
    }

    std::uint32_t error() const noexcept { return error_; }

private:
    Simulation& simulation_;
    std::string name_;
    std::uint32_t error_ = 0;
};

// The frame of every simulated call. Without a simulation, calls the system's function, `real`. Otherwise
// `body` gets the frame, performs the call and converts the answer to the function's result. If memory runs
// out outside of the answer, the result is `out_of_memory`.
template <class Result, class Real, class Body>
Result Simulated(Simulation* simulation, const char* name, Result out_of_memory, const Real& real,
                 const Body& body) noexcept {
    if (simulation == nullptr) {
        return real();
    }
    std::uint32_t error = 0;
    Result result = out_of_memory;
    try {
        CallFrame frame(*simulation, name);
        result = body(frame);
        error = frame.error();
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    if (error != 0 && FamilyOf(name) == CallFamily::kWin32) {
        SetLastError(error);
    }
    return result;
}

// The value of an answer, or `failure`.
template <class Result>
Result ValueOf(const Answer& answer, Result failure) {
    return answer.failed ? failure : static_cast<Result>(answer.value);
}

inline BOOL Succeeded(const Answer& answer) {
    return answer.failed ? FALSE : TRUE;
}

inline HANDLE HandleIn(const Answer& answer) {
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(answer.value));
}

}  // namespace machine
