#pragma once

#include "machine/call_log.h"

#include <string>
#include <vector>

namespace bench {

/// The management calls of one capture, made again without the library. COM must be initialised.
class WmiScript {
public:
    /// Takes the management calls out of a recorded run.
    explicit WmiScript(const std::vector<machine::CallRecord>& records);

    void Play() const;

private:
    enum class Step { kLocator, kConnect, kBlanket, kQuery, kReset, kNext, kGet };

    struct Call {
        Step step;
        std::wstring text;  // class or property
    };

    std::vector<Call> calls_;
};

}  // namespace bench
