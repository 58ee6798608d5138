#pragma once

#include <filesystem>
#include <string>

namespace host {

// A file that is not to outlive its object, not even if the program is interrupted: by Ctrl+C, a closed
// window or the end of the session. One that was moved away stays.
class UnfinishedFile {
public:
    explicit UnfinishedFile(std::filesystem::path file);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::filesystem::path& path() const noexcept { return file_; }

    // Replaces the contents. Returns false if they could not be written as a whole.
    bool Write(const std::string& text) const;

private:
    std::filesystem::path file_;
};

}  // namespace host
