#pragma once

#include "tools/orvane/orvane_library.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace host {

// The library, loaded, on the machine that it is to describe: that of the description, or without one the
// system that this program runs on. This thread has COM for the lifetime of the object, as the library wants.
class LibrarySession {
public:
    // Throws machine::DescriptionError, LibraryError and std::runtime_error.
    explicit LibrarySession(const std::optional<std::filesystem::path>& description);
    ~LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;

    const OrvaneLibrary& library() const;

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
