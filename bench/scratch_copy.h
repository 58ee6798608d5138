#pragma once

#include <filesystem>

namespace bench {

// A temporary copy of the library for the lifetime of the object. Unload the copy before its destruction.
class ScratchCopy {
public:
    ScratchCopy() : file_(std::filesystem::temp_directory_path() / L"Orvane-copy.dll") {
        std::filesystem::copy_file(std::filesystem::path(ORVANE_DLL_PATH), file_,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    ~ScratchCopy() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    ScratchCopy(const ScratchCopy&) = delete;
    ScratchCopy& operator=(const ScratchCopy&) = delete;

    const std::filesystem::path& file() const { return file_; }

private:
    std::filesystem::path file_;
};

}  // namespace bench
