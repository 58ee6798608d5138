#pragma once

#include "tools/orvane/log_sink.h"
#include "tools/orvane/verdicts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Parses the verdict on a volume from the log of a capture that selects only that volume.
class RefusalParser {
public:
    void Take(const LogMessage& message);

    // The verdict. `status` is the result of the capture, which must be a size query. None if the capture
    // failed for another reason.
    std::optional<Verdict> Result(std::uint32_t status) const;

private:
    bool judging_ = false;
    bool refused_ = false;
    std::vector<std::string> lines_;
};

}  // namespace host
