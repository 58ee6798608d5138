#include "machine/recorder/prove/masks.h"
#include "machine/recorder/prove/proof.h"

#include <algorithm>
#include <string_view>

namespace recorder {
namespace {

// Beginnings of the lines whose values change by themselves, without the indentation.
constexpr std::string_view kChanging[] = {
    "<CurrentClockSpeed>",     "<FreeUserSpaces>",   "<TotalFreeSpaces>",
    "<m_FileSystemUsedSpace>", "<CurrentTimeZone>",  "CurrentClockSpeed:",
    "Free user spaces:",       "Total free spaces:", "CurrentTimeZone:",
};

constexpr std::size_t kSearched = 200;  // lines within which the texts are brought together again

using Lines = std::vector<std::string_view>;

Lines LinesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool Changes(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    return std::any_of(std::begin(kChanging), std::end(kChanging),
                       [&](std::string_view beginning) { return line.starts_with(beginning); });
}

// How many lines of each text differ, until both go on alike.
std::pair<std::size_t, std::size_t> Differing(const Lines& here, const Lines& there, std::size_t own,
                                              std::size_t other) {
    const std::size_t rest = here.size() - own;
    const std::size_t other_rest = there.size() - other;
    for (std::size_t both = 1; both < kSearched; ++both) {
        for (std::size_t removed = 0; removed <= both; ++removed) {
            const std::size_t added = both - removed;
            if (removed < rest && added < other_rest && here[own + removed] == there[other + added]) {
                return {removed, added};
            }
        }
    }
    return {rest, other_rest};
}

}  // namespace

std::vector<Finding> CompareOutputs(const std::string& subject, const std::string& recorded,
                                    const std::string& described, const ShownLine& shown) {
    const std::string own_text = Masked(recorded);
    const std::string other_text = Masked(described);
    const Lines here = LinesOf(own_text);
    const Lines there = LinesOf(other_text);
    std::vector<Finding> findings;
    const auto add = [&](std::string_view line, const char* where) {
        findings.push_back({Changes(line) ? Finding::Kind::kChanging : Finding::Kind::kUnexplained,
                            subject + ", only " + where + ": " + shown(std::string(line))});
    };
    std::size_t own = 0;
    std::size_t other = 0;
    while (own < here.size() || other < there.size()) {
        if (own < here.size() && other < there.size() && here[own] == there[other]) {
            ++own;
            ++other;
            continue;
        }
        const auto [removed, added] = Differing(here, there, own, other);
        for (std::size_t i = 0; i < removed; ++i) {
            add(here[own++], "here");
        }
        for (std::size_t i = 0; i < added; ++i) {
            add(there[other++], "there");
        }
    }
    return findings;
}

}  // namespace recorder
