#include "machine/recorder/describe/replay.h"

#include "machine/recorder/observe/ask.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"

namespace recorder {

Observations Replay(const machine::Description& description, const Observations& recorded,
                    const Progress& progress) {
    machine::Session session(description);
    session.simulation().calls().SetKept(false);
    const SystemFunctions functions(&machine::SimulatedProcAddress);
    return ObserveAgain(
        recorded, [&](const Question& question) { return Ask(functions, question); }, progress);
}

}  // namespace recorder
