#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cases {

// A README shows what is special about a machine by lines of its expected files, in code blocks that name the
// file: ```expected/disks.txt. Returns the lines that the file lacks, blanks around them aside, each with the
// name of the file; they have to stand there in the order of the block. The first entry says so if no block
// names a file at all.
std::vector<std::string> UnmetQuotes(const std::filesystem::path& folder);

}  // namespace cases
