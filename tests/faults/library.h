#pragma once

#include "tools/orvane/orvane_library.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

namespace faults {

// The shipped library, put on the simulation and watched (import_hooks.h).
class Library : public host::OrvaneLibrary {
public:
    // Throws std::exception.
    explicit Library(const std::filesystem::path& file);
};

// What is called: a capture in a format, or a dump.
struct EntryPoint {
    std::string_view name;
    std::uint32_t format = 0;  // 0: a dump
    decltype(&::WMIDumpInfo) host::OrvaneLibrary::*dump = nullptr;
};

std::span<const EntryPoint> EntryPoints();

// Throws std::invalid_argument.
const EntryPoint& FindEntryPoint(std::string_view name);

}  // namespace faults
