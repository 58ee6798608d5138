#pragma once

#include "machine/description/description.h"
#include "machine/simulation/call_log.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct tagVARIANT;

namespace machine {

// The result of a call before it is returned. A rule's action may change any part of it: set a wrong length,
// invalid data, or a last error on success.
struct Answer {
    bool failed = false;
    std::uint32_t error = 0;        // on success: 0, a success status, or a last error to set anyway
    std::uint64_t value = 0;        // result: handle, drive type, mask, number of characters
    Bytes bytes;                    // copied to the caller's buffer, truncated to its size
    std::uint64_t returned = 0;     // length reported to the caller
    tagVARIANT* variant = nullptr;  // value of a WMI property; null if reading it failed

    static Answer Failure(std::uint32_t code);
    static Answer Success(std::uint64_t value);
    static Answer Success(Bytes bytes);  // with their number as the length reported
};

struct FaultRule {
    std::string name;            // CallRecord::name, with or without its suffix; empty: every call
    std::wstring object;         // case-insensitive; empty: every object
    std::size_t ordinal = 0;     // the n-th call that matches name and object, from 1; 0: all
    bool from_there_on = false;  // also all matching calls after the n-th
    FaultCodes codes;
    std::function<void(Answer&)> action;  // if set: changes the answer instead of failing the call
};

// The calls to fail or alter. Rules apply in the order in which they were added; each counts the calls that
// match it. The first failing rule sets the error; the actions of all matching rules run.
class FaultPlan {
public:
    void Add(FaultRule rule);

    // Fails every call with this name (on this object, if given) with the code.
    void Fail(const std::string& name, std::uint32_t code, const std::wstring& object = {});

    // Fails the call with this ordinal, counted from the time the rule was added, and all later calls if
    // `from_there_on`. For sweeps over all calls.
    void FailOrdinal(std::size_t ordinal, bool from_there_on, const FaultCodes& codes = {});

    // Changes the answer of every call with this name (on this object, if given).
    void Alter(const std::string& name, std::function<void(Answer&)> action, const std::wstring& object = {});

    void Clear() noexcept { rules_.clear(); }

    // The number of times that a rule was applied to a call.
    std::size_t hits() const noexcept { return hits_; }

    // What to do with one call: the error to fail with, if any, and the actions that change its answer.
    struct Verdict {
        std::optional<std::uint32_t> error;
        std::vector<std::function<void(Answer&)>> actions;
    };
    Verdict Judge(CallFamily family, const std::string& name, const std::wstring& object);

private:
    struct Counted {
        FaultRule rule;
        std::size_t seen = 0;
    };

    std::vector<Counted> rules_;
    std::size_t hits_ = 0;
};

}  // namespace machine
