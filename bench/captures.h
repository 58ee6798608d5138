#pragma once

#include "tools/orvane/orvane_library.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// Captures in one format, into a buffer that is large enough. Throws if a capture fails.
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

// Redirects the library to the described machine of each session. Throws if that fails.
void PutOnSimulation(const host::OrvaneLibrary& library);

// A log callback that does nothing.
void IgnoreLog(std::int32_t level, const char* text);

}  // namespace bench
