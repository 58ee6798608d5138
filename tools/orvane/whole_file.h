#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

enum class Existing { kKept, kReplaced };

// Throws std::runtime_error if the file exists and is to be kept, or is a folder.
void RequireFree(const std::filesystem::path& file, Existing existing);

struct WholeFile {
    std::filesystem::path file;
    std::string text;
    bool for_owner =
        false;  // readable by its owner alone; refused where the file system cannot (private_file.h)
};

// Writes each text into a new file in the folder of its place, and moves them all to their places when all
// are whole, so that a failure leaves what was there before. Only if a later one cannot be moved over an
// existing file, those before are replaced already; the message names them. Throws std::runtime_error.
void WriteWholeFiles(const std::vector<WholeFile>& files, Existing existing);

}  // namespace host
