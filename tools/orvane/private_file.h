#pragma once

#include "tools/orvane/unfinished_file.h"

#include <filesystem>
#include <string>

namespace host {

// Creates an empty file that only its owner and the system itself may read. Throws std::runtime_error, and
// leaves no file, if it exists already, or if the file system cannot keep others from reading it.
void CreatePrivateFile(const std::filesystem::path& file);

// Whether the file has an access list that lets in nobody but the user of this process and the system.
bool OnlyOwnerMayRead(const std::filesystem::path& file);

// A private file in the folder for temporary files, deleted at the end, and when the program is interrupted.
// Throws like CreatePrivateFile.
class TemporaryPrivateFile {
public:
    explicit TemporaryPrivateFile(const std::string& text);

    const std::filesystem::path& path() const noexcept { return file_.path(); }

private:
    UnfinishedFile file_;
};

}  // namespace host
