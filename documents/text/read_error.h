#pragma once

#include <stdexcept>
#include <string>

namespace documents {

// A document that cannot be read. what() is "PLACE: REASON" in UTF-8, one line; PLACE is "line 3, column 7"
// or the path of an element, "DiskDrives/x0/size". The caller puts the file's name before it.
class ReadError : public std::runtime_error {
public:
    ReadError(const std::string& place, const std::string& reason)
        : std::runtime_error(place + ": " + reason), place_(place), reason_(reason) {}

    const std::string& place() const { return place_; }
    const std::string& reason() const { return reason_; }

private:
    std::string place_;
    std::string reason_;
};

}  // namespace documents
