#include "cases/case_folder.h"

#include "machine/description/text.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace cases {

std::vector<std::filesystem::path> FoldersOf(const std::filesystem::path& examples) {
    std::vector<std::filesystem::path> folders;
    for (const auto& entry : std::filesystem::directory_iterator(examples)) {
        if (entry.is_directory()) {
            folders.push_back(entry.path());
        }
    }
    std::sort(folders.begin(), folders.end());
    return folders;
}

std::string ReadText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (!stream || (stream.peek() != std::ifstream::traits_type::eof() && !(text << stream.rdbuf()))) {
        throw std::runtime_error(machine::Narrow(file.wstring()) + " cannot be read");
    }
    return text.str();
}

std::vector<std::wstring> SelectedVolumes(const std::filesystem::path& folder) {
    std::vector<std::wstring> volumes;
    if (!std::filesystem::exists(folder / kSelectedFile)) {
        return volumes;
    }
    std::istringstream lines(ReadText(folder / kSelectedFile));
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (!line.empty()) {
            volumes.push_back(machine::Widen(line));
        }
    }
    return volumes;
}

}  // namespace cases
