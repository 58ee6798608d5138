#pragma once

#include "machine/call_log.h"
#include "machine/description.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct tagVARIANT;

namespace machine {

// What a call is about to answer. A rule's action may change any of it: lie about the length, hand out
// garbage, leave a last error behind on success.
struct Answer {
    bool failed = false;
    std::uint32_t error = 0;  // when not failed: 0, or a last error that is set although the call succeeded
    std::uint64_t value = 0;  // the plain result: handle, drive type, mask, number of characters
    Bytes bytes;              // copied into the caller's buffer, never more than it holds
    std::uint64_t returned = 0;     // the length told to the caller
    tagVARIANT* variant = nullptr;  // the value of a WMI property; null when reading it failed

    static Answer Failure(std::uint32_t code);
};

// The codes that a failing call reports, by the family of the call.
struct FaultCodes {
    std::uint32_t win32 = 31;           // ERROR_GEN_FAILURE
    std::uint32_t native = 0xC0000001;  // STATUS_UNSUCCESSFUL
    std::uint32_t com = 0x80004005;     // E_FAIL

    std::uint32_t For(CallFamily family) const noexcept;
};

struct FaultRule {
    std::string name;            // call, as CallRecord::name or the part before its colon; empty: every call
    std::wstring object;         // case-insensitive; empty: every object
    std::size_t ordinal = 0;     // the k-th call that the name and the object select; 0: each of them
    bool from_there_on = false;  // the k-th and all after it
    FaultCodes codes;
    std::function<void(Answer&)> action;  // instead of failing: changes the answer that was computed
};

// Which calls go wrong. Rules are tried in the order they were added; each counts the calls it selects.
class FaultPlan {
public:
    void Add(FaultRule rule);

    // Every call of the name (on the object) fails with the code.
    void Fail(const std::string& name, std::uint32_t code, const std::wstring& object = {});

    // The k-th call of all fails, once or with everything after it. For sweeps.
    void FailOrdinal(std::size_t ordinal, bool from_there_on, const FaultCodes& codes = {});

    // Every call of the name (on the object) has its answer changed.
    void Alter(const std::string& name, std::function<void(Answer&)> action, const std::wstring& object = {});

    void Clear() noexcept { rules_.clear(); }

    // Calls that a rule hit.
    std::size_t hits() const noexcept { return hits_; }

    // What to do with a call about to be answered: the code to fail with, and the actions for its answer.
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
