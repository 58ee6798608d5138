#include "documents/model/machine.h"

#include <algorithm>

namespace documents {

namespace {

template <class Value>
std::optional<Value> FactOf(const Machine& machine, std::string_view section, std::string_view name) {
    const auto found = std::find_if(machine.facts.begin(), machine.facts.end(), [&](const Fact& fact) {
        return fact.section == section && fact.name == name;
    });
    if (found == machine.facts.end() || !std::holds_alternative<Value>(found->value)) {
        return std::nullopt;
    }
    return std::get<Value>(found->value);
}

}  // namespace

std::optional<std::string> TextFact(const Machine& machine, std::string_view section, std::string_view name) {
    return FactOf<std::string>(machine, section, name);
}

std::optional<std::int64_t> NumberFact(const Machine& machine, std::string_view section,
                                       std::string_view name) {
    return FactOf<std::int64_t>(machine, section, name);
}

}  // namespace documents
