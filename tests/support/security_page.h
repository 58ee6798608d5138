#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace support {

// What SECURITY.md says of the library. The tests take it as it is written there.
struct SecurityPage {
    // The requests of each entry point, in the words of request_watch.h. The entry points are "capture1" to
    // "capture3", "wmi", "disks", "volumes", "firmware".
    std::map<std::string, std::set<std::string>, std::less<>> requests;
    // What all entry points read: calls as the simulation names them, DeviceIoControl without its codes;
    // object directories; classes of WMI.
    std::set<std::string> readings;
    // The functions that the library holds and no export reaches.
    std::set<std::string> never_reached;

    // Throws std::runtime_error if the page cannot be read or lacks one of its tables.
    static SecurityPage Read(const std::filesystem::path& file);

    // True if every one of these requests is among those of the entry point.
    bool Covers(std::string_view entry, const std::set<std::string>& kinds) const;
};

// Calls in the words of `readings`.
std::set<std::string> ReadingsOf(const std::set<std::string>& calls);

}  // namespace support
