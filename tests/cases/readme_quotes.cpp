#include "cases/readme_quotes.h"

#include "cases/case_folder.h"

#include <sstream>

namespace cases {

namespace {

constexpr const char* kFence = "```";

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \r") - first + 1);
}

// The lines of one file, read once from the beginning to the end.
class Quoted {
public:
    explicit Quoted(const std::filesystem::path& file)
        : lines_(std::filesystem::exists(file) ? ReadText(file) : "") {}

    bool Has(const std::string& quote) {
        for (std::string line; std::getline(lines_, line);) {
            if (Trimmed(line) == quote) {
                return true;
            }
        }
        return false;
    }

private:
    std::istringstream lines_;
};

}  // namespace

std::vector<std::string> UnmetQuotes(const std::filesystem::path& folder) {
    std::istringstream readme(ReadText(folder / kReadmeFile));
    const std::string opening = std::string(kFence) + kExpectedFolder + "/";
    std::vector<std::string> unmet;
    bool quotes = false;
    for (std::string line; std::getline(readme, line);) {
        if (!line.starts_with(opening)) {
            continue;
        }
        quotes = true;
        const std::string file = Trimmed(line.substr(opening.size()));
        Quoted quoted(folder / kExpectedFolder / file);
        while (std::getline(readme, line) && !line.starts_with(kFence)) {
            const std::string quote = Trimmed(line);
            if (!quote.empty() && !quoted.Has(quote)) {
                unmet.push_back(file + ": " + quote);
                break;
            }
        }
    }
    if (!quotes) {
        unmet.emplace_back("README.md quotes no line of the expected files");
    }
    return unmet;
}

}  // namespace cases
