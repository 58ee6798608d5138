#include "documents/commands/output_file.h"

#include "documents/commands/command.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace documents {

namespace {

// Removes the file unless it was given its name.
class TemporaryFile {
public:
    explicit TemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
    ~TemporaryFile() {
        std::error_code ignored;
        if (!path_.empty()) {
            std::filesystem::remove(path_, ignored);
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    void Keep() { path_.clear(); }

private:
    std::filesystem::path path_;
};

}  // namespace

void RequireFree(const std::string& file) {
    const std::filesystem::path path(std::u8string(file.begin(), file.end()));
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
        throw Trouble(file + ": the file exists; --force replaces it");
    }
}

void WriteWholeFile(const std::string& file, const std::string& bytes, bool force) {
    const std::filesystem::path path(std::u8string(file.begin(), file.end()));
    std::error_code error;
    if (!force) {
        RequireFree(file);
    }
    std::filesystem::path beside = path;
    beside += "." + std::to_string(std::random_device()()) + ".part";
    TemporaryFile part(beside);
    {
        std::ofstream out(part.path(), std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            throw Trouble(file + ": the file cannot be written");
        }
    }
    if (!force) {
        // Unlike a new name, a second name never replaces a file that has appeared in between.
        std::filesystem::create_hard_link(part.path(), path, error);
        if (!error) {
            return;
        }
        // The file is there, or the file system has no second names.
        RequireFree(file);
    }
    std::filesystem::rename(part.path(), path, error);
    if (error) {
        throw Trouble(file + ": the file cannot be written");
    }
    part.Keep();
}

}  // namespace documents
