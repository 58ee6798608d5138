#pragma once

#include "machine/recorder/observe/observations.h"

#include <functional>

namespace recorder {

using Asker = std::function<Answer(const Question&)>;

// Is told before each question how many were asked.
using Progress = std::function<void(std::size_t asked, const Question& next)>;

// Asks all questions of the table (question_table.h) about all objects that the answers name. Throws what
// `ask` throws.
Observations Observe(const Asker& ask, const Progress& progress);

// Asks the questions of other observations again, in their order.
Observations ObserveAgain(const Observations& first, const Asker& ask, const Progress& progress);

}  // namespace recorder
