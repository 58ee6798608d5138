#include "machine/recorder/observe/agreement.h"

#include "machine/description/control_codes.h"
#include "machine/description/text.h"

#include <algorithm>

namespace recorder {
namespace {

constexpr std::uint32_t kPropertyNotFound = 0x80041002;  // WBEM_E_NOT_FOUND

bool IsUnordered(const Question& question) {
    return question.call == "IWbemServices::ExecQuery" || question.call == "RegEnumValueW";
}

std::vector<Part> Normal(const Question& question, std::vector<Part> parts) {
    if (!IsUnordered(question)) {
        return parts;
    }
    std::erase_if(parts, [](const Part& part) { return part.error == kPropertyNotFound; });
    for (Part& part : parts) {
        part.name = machine::Folded(part.name);
    }
    std::stable_sort(parts.begin(), parts.end(), [](const Part& left, const Part& right) {
        return left.instance != right.instance ? left.instance < right.instance : left.name < right.name;
    });
    return parts;
}

}  // namespace

Agreement Compare(const Observation& recorded, const Answer& described) {
    const Answer& own = recorded.answer;
    if (own.blocks) {
        const std::string call = described.step.empty() ? recorded.question.call : described.step;
        return described.error == machine::BlockedCode(call) ? Agreement::kExplained : Agreement::kDifferent;
    }
    const bool same = own.crashed == described.crashed && own.step == described.step &&
                      own.error == described.error && own.value == described.value &&
                      own.returned == described.returned && own.bytes == described.bytes &&
                      Normal(recorded.question, own.parts) == Normal(recorded.question, described.parts);
    return same ? Agreement::kSame : Agreement::kDifferent;
}

std::string CallOf(const Observation& observation) {
    return observation.answer.step.empty() ? observation.question.call : observation.answer.step;
}

}  // namespace recorder
