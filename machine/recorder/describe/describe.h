#pragma once

#include "machine/description/description.h"
#include "machine/recorder/observe/observations.h"

namespace recorder {

// The machine that the observations show, with the defaults of the format for what they do not tell. What the
// format cannot say is left out, which a proof then finds. It reads the same for the same observations. Needs
// that no simulation is current: the described machine is asked, to find the calls that fail on it alone.
machine::Description Describe(const Observations& observations);

}  // namespace recorder
