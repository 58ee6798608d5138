#pragma once

#include "common/platform/unique_bstr.h"
#include "machine/simulation/call_log.h"

#include <vector>

namespace bench {

// Replays the WMI calls of one capture without the library. COM must be initialised.
class WmiScript {
public:
    // Takes the WMI calls from a recorded run.
    explicit WmiScript(const std::vector<machine::CallRecord>& records);

    void Play() const;

private:
    enum class Step { kLocator, kConnect, kBlanket, kQuery, kReset, kNext, kGet };

    struct Call {
        Step step;
        UniqueBstr text;  // the query or the property
    };

    UniqueBstr name_space_;
    UniqueBstr language_;
    std::vector<Call> calls_;
};

}  // namespace bench
