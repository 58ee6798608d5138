#pragma once

#include "machine/description/description.h"
#include "machine/recorder/observe/observe.h"

namespace recorder {

// Asks a described machine the questions of the observations again. No other simulation may be current.
// Throws std::runtime_error if it cannot be simulated.
Observations Replay(const machine::Description& description, const Observations& recorded,
                    const Progress& progress);

}  // namespace recorder
