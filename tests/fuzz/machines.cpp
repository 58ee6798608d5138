// Any bytes as the description of a machine: it is refused, or can be written, and what is written is read
// again.

#include "machine/description/description.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string written;
    try {
        written = machine::WriteDescription(machine::ParseDescription(
            std::string(reinterpret_cast<const char*>(data), size), "machine.json"));
    } catch (const machine::DescriptionError&) {
        return 0;
    } catch (const std::system_error&) {
        return 0;  // the name of an image that no file of this system can have
    }
    machine::ParseDescription(written, "written.json");
    return 0;
}
