#pragma once

#include "tools/orvane/log_sink.h"
#include "tools/orvane/verdicts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Reads out of a capture with one selected volume what became of that volume.
class RefusalParser {
public:
    void Take(const LogMessage& message);

    // The verdict, given the status of the capture, a size query; none when it failed over something else.
    std::optional<Verdict> Result(std::uint32_t status) const;

private:
    bool judging_ = false;
    bool refused_ = false;
    std::vector<std::string> lines_;
};

}  // namespace host
