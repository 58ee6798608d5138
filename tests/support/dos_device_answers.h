#pragma once

#include "machine/simulation/fault_plan.h"

#include <cstddef>
#include <string>

namespace support {

// From now on QueryDosDeviceW succeeds for the device (by default for every device) with an empty list of
// targets.
inline void AnswerNoTarget(machine::FaultPlan& faults, const std::wstring& device = {}) {
    constexpr std::size_t kCharacters = 2;
    const auto empty = [](machine::Answer& answer) {
        answer.bytes.assign(kCharacters * sizeof(wchar_t), 0);
        answer.value = kCharacters;
    };
    faults.Alter("QueryDosDeviceW", empty, device);
}

}  // namespace support
