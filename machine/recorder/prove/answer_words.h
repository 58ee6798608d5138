#pragma once

#include "machine/recorder/observe/question.h"

#include <string>

namespace recorder {

// How two answers to the same question differ, for people: "error 122 here, success there".
std::string DifferenceInWords(const Observation& here, const Answer& there);

}  // namespace recorder
