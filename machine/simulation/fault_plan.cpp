#include "machine/simulation/fault_plan.h"

#include "machine/description/text.h"

#include <utility>

namespace machine {

Answer Answer::Failure(std::uint32_t code) {
    Answer answer;
    answer.failed = true;
    answer.error = code;
    return answer;
}

Answer Answer::Success(std::uint64_t value) {
    Answer answer;
    answer.value = value;
    return answer;
}

Answer Answer::Success(Bytes bytes) {
    Answer answer;
    answer.returned = bytes.size();
    answer.bytes = std::move(bytes);
    return answer;
}

void FaultPlan::Add(FaultRule rule) {
    rules_.push_back({std::move(rule), 0});
}

void FaultPlan::Fail(const std::string& name, std::uint32_t code, const std::wstring& object) {
    FaultRule rule;
    rule.name = name;
    rule.object = object;
    rule.codes = {code, code, code};
    Add(std::move(rule));
}

void FaultPlan::FailOrdinal(std::size_t ordinal, bool from_there_on, const FaultCodes& codes) {
    FaultRule rule;
    rule.ordinal = ordinal;
    rule.from_there_on = from_there_on;
    rule.codes = codes;
    Add(std::move(rule));
}

void FaultPlan::Alter(const std::string& name, std::function<void(Answer&)> action,
                      const std::wstring& object) {
    FaultRule rule;
    rule.name = name;
    rule.object = object;
    rule.action = std::move(action);
    Add(std::move(rule));
}

FaultPlan::Verdict FaultPlan::Judge(CallFamily family, const std::string& name, const std::wstring& object) {
    Verdict verdict;
    for (Counted& counted : rules_) {
        const FaultRule& rule = counted.rule;
        if (!rule.name.empty() && !IsCallNamed(name, rule.name)) {
            continue;
        }
        if (!rule.object.empty() && !EqualNames(object, rule.object)) {
            continue;
        }
        ++counted.seen;
        const bool hit = rule.ordinal == 0 || counted.seen == rule.ordinal ||
                         (rule.from_there_on && counted.seen > rule.ordinal);
        if (!hit) {
            continue;
        }
        ++hits_;
        if (rule.action) {
            verdict.actions.push_back(rule.action);
        } else if (!verdict.error) {
            verdict.error = rule.codes.For(family);
        }
    }
    return verdict;
}

}  // namespace machine
