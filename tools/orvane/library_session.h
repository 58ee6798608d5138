#pragma once

#include "tools/orvane/orvane_library.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace host {

// The loaded library. It describes the machine of the description or, without a description, the system that
// this program runs on. COM is initialised on this thread for the lifetime of the object, as the library
// requires.
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
