#include "cases/expected_files.h"

#include "cases/case_folder.h"
#include "cases/case_outputs.h"
#include "cases/line_diff.h"
#include "machine/description/text.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <stdexcept>

namespace cases {

namespace {

constexpr const char* kFilesOfACase[] = {kMachineFile, kReadmeFile, kSelectedFile, kExceptionsFile,
                                         kExpectedFolder};

std::string NameOf(const std::filesystem::path& path) {
    return machine::Narrow(path.filename().wstring());
}

void RequireWritten(const std::filesystem::path& file, const char* reason) {
    if (!std::filesystem::is_regular_file(file) || std::filesystem::file_size(file) == 0) {
        throw std::runtime_error(machine::Narrow(file.wstring()) + " is missing: " + reason);
    }
}

// Returns whether the file had another text, or none.
bool Write(const std::filesystem::path& file, const std::string& text) {
    if (std::filesystem::exists(file) && ReadText(file) == text) {
        return false;
    }
    if (!(std::ofstream(file, std::ios::binary) << text << std::flush)) {
        throw std::runtime_error(machine::Narrow(file.wstring()) + " cannot be written");
    }
    return true;
}

}  // namespace

std::string DifferenceOf(const std::filesystem::path& folder, const std::string& subject) {
    const std::filesystem::path expected = folder / kExpectedFolder;
    const Output output = MakeOutput(folder, subject);
    for (const std::string& file : FilesOf(subject)) {
        const bool exists = std::filesystem::exists(expected / file);
        if (file == output.file && !exists) {
            return file + " is missing. The library makes:\n" + Difference("", output.text);
        }
        if (file != output.file && exists) {
            return "There is no " + file + ". The library makes " + output.file + ":\n" +
                   Difference("", output.text);
        }
    }
    const std::string difference = Difference(ReadText(expected / output.file), output.text);
    return difference.empty() ? "" : output.file + ", " + difference;
}

std::vector<std::string> Strays(const std::filesystem::path& folder) {
    std::set<std::string> belonging(std::begin(kFilesOfACase), std::end(kFilesOfACase));
    for (const std::string& subject : Subjects()) {
        for (const std::string& file : FilesOf(subject)) {
            belonging.insert(std::string(kExpectedFolder) + "/" + file);
        }
    }
    std::vector<std::string> strays;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string name = machine::Narrow(entry.path().lexically_relative(folder).generic_wstring());
        if (!belonging.contains(name)) {
            strays.push_back(name);
        }
    }
    std::sort(strays.begin(), strays.end());
    return strays;
}

std::vector<std::string> WriteExpectedFiles(const std::filesystem::path& folder) {
    RequireWritten(folder / kMachineFile, "describe the machine first");
    RequireWritten(folder / kReadmeFile,
                   "write first what is special about the machine, and where that is known from");
    const std::filesystem::path expected = folder / kExpectedFolder;
    std::filesystem::create_directories(expected);
    std::vector<std::string> changes;
    for (const std::string& subject : Subjects()) {
        const Output output = MakeOutput(folder, subject);
        if (Write(expected / output.file, output.text)) {
            changes.push_back("written " + NameOf(expected / output.file));
        }
        for (const std::string& file : FilesOf(subject)) {
            if (file != output.file && std::filesystem::remove(expected / file)) {
                changes.push_back("removed " + file);
            }
        }
    }
    return changes;
}

}  // namespace cases
