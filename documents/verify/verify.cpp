#include "documents/verify/verify.h"

#include "documents/verify/rules.h"

#include <algorithm>
#include <array>

namespace documents {

namespace {

std::array<std::span<const Rule>, 5> AllRules() {
    return {FormRules(), DiskRules(), PartitionRules(), VolumeRules(), RoleRules()};
}

}  // namespace

std::string_view NameOf(Severity severity) {
    return severity == Severity::kError ? "error" : "note";
}

std::vector<FindingCode> FindingCodes() {
    std::vector<FindingCode> codes;
    for (const std::span<const Rule> rules : AllRules()) {
        for (const Rule& rule : rules) {
            codes.push_back(rule.code);
        }
    }
    return codes;
}

std::vector<Finding> Verify(const Machine& machine) {
    const Subject subject(machine);
    std::vector<Finding> findings;
    for (const std::span<const Rule> rules : AllRules()) {
        for (const Rule& rule : rules) {
            Report report(rule.code.code, findings);
            rule.check(subject, report);
        }
    }
    return findings;
}

bool HasErrors(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::kError; });
}

}  // namespace documents
