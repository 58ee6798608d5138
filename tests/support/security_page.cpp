#include "support/security_page.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace support {

namespace {

constexpr const char* kAsked = "## What it asks of the system";
constexpr const char* kRead = "## What it reads";
constexpr const char* kNeverReached = "## Functions that no export reaches";

// The cells of a row of a table; none of another line.
std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    if (!line.starts_with("| `")) {
        return cells;
    }
    std::istringstream rest(line.substr(1));
    for (std::string cell; std::getline(rest, cell, '|');) {
        cells.push_back(cell);
    }
    return cells;
}

// The texts between back quotes.
std::set<std::string> Quoted(const std::string& cell) {
    std::set<std::string> texts;
    for (std::size_t begin = cell.find('`'); begin != std::string::npos;) {
        const std::size_t end = cell.find('`', begin + 1);
        texts.insert(cell.substr(begin + 1, end - begin - 1));
        begin = end == std::string::npos ? end : cell.find('`', end + 1);
    }
    return texts;
}

// The words of a cell, which are separated by blanks and commas.
std::vector<std::string> Words(std::string cell) {
    std::replace(cell.begin(), cell.end(), ',', ' ');
    std::istringstream stream(cell);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

void AddRequests(SecurityPage& page, const std::vector<std::string>& cells) {
    const std::set<std::string> kinds = Quoted(cells.at(0));
    for (const std::string& format : Words(cells.at(1))) {
        page.requests["capture" + format].insert(kinds.begin(), kinds.end());
    }
    for (const std::string& dump : Words(cells.at(2))) {
        page.requests[dump].insert(kinds.begin(), kinds.end());
    }
}

}  // namespace

SecurityPage SecurityPage::Read(const std::filesystem::path& file) {
    SecurityPage page;
    std::ifstream stream(file);
    std::string section;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with('#')) {
            section = line;
        }
        const std::vector<std::string> cells = Cells(line);
        if (cells.empty()) {
            continue;
        }
        if (section == kAsked) {
            AddRequests(page, cells);
        } else if (section == kRead) {
            page.readings.merge(Quoted(cells.at(0)));
        } else if (section == kNeverReached) {
            page.never_reached.merge(Quoted(cells.at(0)));
        }
    }
    if (page.requests.empty() || page.readings.empty() || page.never_reached.empty()) {
        throw std::runtime_error("SECURITY.md lacks one of its tables");
    }
    return page;
}

bool SecurityPage::Covers(std::string_view entry, const std::set<std::string>& kinds) const {
    const auto documented = requests.find(entry);
    return documented == requests.end() ? kinds.empty()
                                        : std::includes(documented->second.begin(), documented->second.end(),
                                                        kinds.begin(), kinds.end());
}

std::set<std::string> ReadingsOf(const std::set<std::string>& calls) {
    constexpr std::string_view kControl = "DeviceIoControl";
    std::set<std::string> readings;
    for (const std::string& call : calls) {
        readings.insert(call.starts_with(kControl) ? std::string(kControl) : call);
    }
    return readings;
}

}  // namespace support
