#pragma once

#include "machine/fault_plan.h"

#include <cstddef>
#include <string>

namespace support {

// From now on the system answers for the device (for every device, when none is given) and names no target:
// the list holds nothing but the empty entry that ends it.
inline void AnswerNoTarget(machine::FaultPlan& faults, const std::wstring& device = {}) {
    constexpr std::size_t kCharacters = 2;
    const auto empty = [](machine::Answer& answer) {
        answer.bytes.assign(kCharacters * sizeof(wchar_t), 0);
        answer.value = kCharacters;
    };
    faults.Alter("QueryDosDeviceW", empty, device);
}

}  // namespace support
