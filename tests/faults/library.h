#pragma once

#include "tools/orvane/orvane_library.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace faults {

// The shipped library, redirected to the simulation and hooked (import_hooks.h).
class Library : public host::OrvaneLibrary {
public:
    // Throws std::exception if it cannot be loaded, redirected or hooked.
    explicit Library(const std::filesystem::path& file);
};

// An export to call: a capture in one format, or a dump.
struct EntryPoint {
    std::string_view name;
    std::uint32_t format = 0;  // 0 for a dump
    decltype(&::WMIDumpInfo) host::OrvaneLibrary::*dump = nullptr;
};

// Forgets what the library asked of the system and of WMI so far.
void ForgetRequests();

// True if everything that the library asked since then is what SECURITY.md says: the requests of this entry
// point and the opened names (support/request_watch.h), and the calls to the simulation.
bool AskedOnlyWhatIsDocumented(const EntryPoint& entry);

// Throws std::invalid_argument.
const EntryPoint& FindEntryPoint(std::string_view name);

}  // namespace faults
