#pragma once

#include "machine/recorder/observe/question.h"

#include <string>

namespace recorder {

enum class Agreement {
    kSame,
    kExplained,  // the recorded answer did not come; the described machine says so by an error
    kDifferent,
};

// Whether a described machine answers as the recorded one. What is no part of an answer's meaning may differ:
// the order of properties and of registry values, and whether a property that cannot be found has a name.
Agreement Compare(const Observation& recorded, const Answer& described);

// The call that gave the answer: the step, or else the question's own call.
std::string CallOf(const Observation& observation);

}  // namespace recorder
