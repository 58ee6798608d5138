#include "tools/orvane/check_report.h"
#include "tools/orvane/reason_codes.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

using Cells = std::vector<std::string>;

struct Row {
    const Verdict* verdict = nullptr;  // null: unknown
    Cells cells;
};

constexpr std::string_view kIndent = "  ";
constexpr std::string_view kGap = "  ";
constexpr std::string_view kVerdictHeading = "Backup";

constexpr std::string_view kGreen = "\x1b[32m";
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kPlain = "\x1b[0m";

// The number of characters; UTF-8 continuation bytes do not count.
std::size_t Width(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string Padding(std::string_view text, std::size_t width) {
    std::string padding;
    padding.resize(width - std::min(width, Width(text)), ' ');
    return padding;
}

class Table {
public:
    Table(const Cells& headings, std::vector<Row> rows, bool colour)
        : headings_(headings), rows_(std::move(rows)), colour_(colour), widths_(headings.size()) {
        Widen(headings_);
        for (const Row& row : rows_) {
            Widen(row.cells);
        }
    }

    std::string Text() const {
        std::string text = LineOf(std::string(kVerdictHeading), {}, headings_);
        for (const Row& row : rows_) {
            const bool good = row.verdict != nullptr && row.verdict->can_backup;
            const std::string word = row.verdict == nullptr ? "?" : good ? "yes" : "no";
            text += LineOf(word, good ? kGreen : kRed, row.cells);
            text += ReasonsOf(row);
        }
        return text;
    }

private:
    void Widen(const Cells& cells) {
        for (std::size_t column = 0; column < widths_.size(); ++column) {
            widths_[column] = std::max(widths_[column], Width(cells[column]));
        }
    }

    std::string LineOf(const std::string& word, std::string_view colour, const Cells& cells) const {
        std::string line(kIndent);
        line += colour_ && !colour.empty() ? std::string(colour) + word + std::string(kPlain) : word;
        std::string gap = Padding(word, kVerdictHeading.size());
        for (std::size_t column = 0; column < cells.size(); ++column) {
            if (!cells[column].empty()) {
                line += gap + std::string(kGap) + cells[column];
                gap.clear();
            } else {
                gap += kGap;
            }
            gap += Padding(cells[column], widths_[column]);
        }
        return line + '\n';
    }

    static std::string ReasonLine(const std::string& text) {
        return std::string(kIndent) + std::string(kVerdictHeading.size(), ' ') + std::string(kGap) +
               std::string(kIndent) + text + '\n';
    }

    static std::string ReasonsOf(const Row& row) {
        if (row.verdict == nullptr) {
            return ReasonLine("could not be judged");
        }
        std::string text;
        for (const std::string& reason : row.verdict->reasons) {
            text += ReasonLine(std::string(CodeOf(reason)) + ' ' + reason);
        }
        return text;
    }

    const Cells& headings_;
    std::vector<Row> rows_;
    bool colour_;
    std::vector<std::size_t> widths_;
};

std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined;
}

Row RowOf(const DiskVerdict& disk) {
    return {&disk.verdict, {std::to_string(disk.index), disk.size}};
}

Row RowOf(const VolumeVerdict& volume) {
    return {&volume.verdict, {volume.id, volume.device, Joined(volume.mount_points)}};
}

Row RowOf(const SelectedVerdict& selected) {
    return {selected.verdict ? &*selected.verdict : nullptr, {selected.volume}};
}

template <class Verdicts>
std::string Section(const char* title, const Cells& headings, const Verdicts* verdicts, bool colour) {
    const std::string heading = std::string(title) + '\n';
    if (verdicts == nullptr) {
        return heading + "  could not be listed\n";
    }
    if (verdicts->empty()) {
        return heading + "  none found\n";
    }
    std::vector<Row> rows;
    std::transform(verdicts->begin(), verdicts->end(), std::back_inserter(rows),
                   [](const auto& verdict) { return RowOf(verdict); });
    return heading + Table(headings, std::move(rows), colour).Text();
}

template <class Verdicts>
const Verdicts* AddressOf(const std::optional<Verdicts>& verdicts) {
    return verdicts ? &*verdicts : nullptr;
}

}  // namespace

std::string TableOf(const CheckReport& report, bool colour) {
    std::string text =
        Section("Disks", {"Disk", "Size"}, AddressOf(report.disks), colour) + '\n' +
        Section("Volumes", {"Volume", "Device", "Mounted as"}, AddressOf(report.volumes), colour);
    if (!report.selected.empty()) {
        text += '\n' + Section("Selected", {"Volume"}, &report.selected, colour);
    }
    return text;
}

}  // namespace host
