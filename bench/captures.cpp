#include "bench/captures.h"

#include "machine/simulation/redirect.h"

#include <stdexcept>

namespace bench {

Captures::Captures(const host::OrvaneLibrary& library, std::uint32_t format)
    : library_(library), format_(format) {
    library_.SetXmlFormat(format_);
    if (library_.CaptureSystemRestorePointInfo(nullptr, 0, &length_) != ORVANE_BUFFER_TOO_SMALL) {
        throw std::runtime_error("the machine cannot be captured in format " + std::to_string(format_));
    }
    // Addresses in the document may change its length by a few bytes.
    buffer_.resize(length_ + length_ / 16 + 64);
    Run();
}

void Captures::Run() {
    library_.SetXmlFormat(format_);
    if (library_.CaptureSystemRestorePointInfo(buffer_.data(), static_cast<std::uint32_t>(buffer_.size()),
                                               &length_) != ORVANE_SUCCESS) {
        throw std::runtime_error("a capture failed");
    }
}

void PutOnSimulation(const host::OrvaneLibrary& library) {
    if (!machine::PutModuleOnSimulation(library.module())) {
        throw std::runtime_error("the library cannot be put on a described machine");
    }
}

void IgnoreLog(std::int32_t /*level*/, const char* /*text*/) {}

}  // namespace bench
