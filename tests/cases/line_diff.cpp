#include "cases/line_diff.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace cases {

namespace {

constexpr std::size_t kContext = 3;
constexpr std::size_t kMostShown = 12;  // of either text
constexpr std::size_t kSearched = 200;  // lines within which the texts are brought together again

using Text = std::vector<std::string_view>;

// A text without a line feed at its end differs from the same text with one.
Text LinesOf(std::string_view text) {
    Text lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

// How many lines of each text differ from `start` on, until both go on alike.
struct Hunk {
    std::size_t expected = 0;
    std::size_t actual = 0;
};

Hunk FirstHunk(const Text& expected, const Text& actual, std::size_t start) {
    const Hunk rest{expected.size() - start, actual.size() - start};
    for (std::size_t both = 1; both < kSearched; ++both) {
        for (std::size_t removed = 0; removed <= both; ++removed) {
            const std::size_t added = both - removed;
            if (removed < rest.expected && added < rest.actual &&
                expected[start + removed] == actual[start + added]) {
                return {removed, added};
            }
        }
    }
    return rest;
}

void Show(std::string& out, char mark, const Text& text, std::size_t first, std::size_t count) {
    for (std::size_t line = first; line < std::min(first + count, text.size()); ++line) {
        if (line == first + kMostShown) {
            out += std::string(1, mark) + " ... " + std::to_string(first + count - line) + " more lines\n";
            return;
        }
        out.append(1, mark).append(" ").append(text[line]);
        out += text[line].ends_with('\n') ? "" : "(no line feed)\n";
    }
}

}  // namespace

std::string Difference(const std::string& expected, const std::string& actual) {
    const Text old_lines = LinesOf(expected);
    const Text new_lines = LinesOf(actual);
    const auto [differing, unused] =
        std::mismatch(old_lines.begin(), old_lines.end(), new_lines.begin(), new_lines.end());
    const auto start = static_cast<std::size_t>(differing - old_lines.begin());
    if (start == old_lines.size() && start == new_lines.size()) {
        return {};
    }
    const Hunk hunk = FirstHunk(old_lines, new_lines, start);
    const std::size_t before = std::min(start, kContext);
    std::string out = "line " + std::to_string(start + 1) + ":\n";
    Show(out, ' ', old_lines, start - before, before);
    Show(out, '-', old_lines, start, hunk.expected);
    Show(out, '+', new_lines, start, hunk.actual);
    Show(out, ' ', old_lines, start + hunk.expected, kContext);
    return out;
}

}  // namespace cases
