#pragma once

#include "tools/orvane/orvane_library.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// A capture in the format, into a buffer that is large enough; throws when it fails.
class Captures {
public:
    Captures(const host::OrvaneLibrary& library, std::uint32_t format);

    void Run();
    std::string Document() const { return buffer_.substr(0, length_); }

private:
    const host::OrvaneLibrary& library_;
    std::uint32_t format_;
    std::string buffer_;
    std::uint32_t length_ = 0;
};

// Puts the library on the described machine of each session; throws when it cannot be put there.
void PutOnSimulation(const host::OrvaneLibrary& library);

// Receives the log and does nothing with it.
void IgnoreLog(std::int32_t level, const char* text);

}  // namespace bench
