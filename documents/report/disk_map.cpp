#include "documents/report/disk_map.h"

#include "documents/report/map_widths.h"
#include "documents/report/part_texts.h"
#include "documents/show/show.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>

namespace documents {

namespace {

struct MapKind {
    const char* look;
    int width;  // pixels
};

// A4 less its margins, and a narrow telephone less the page's.
constexpr std::array kMaps = {MapKind{"wide", 680}, MapKind{"narrow", 320}};

// Of the text in a part, pixels. The browser cuts off what is wider than was estimated.
constexpr double kCharacterWidth = 7.5;
constexpr double kTextMargins = 12;
constexpr std::size_t kFewestCharacters = 2;
constexpr int kFirstLine = 17;
constexpr int kLineHeight = 15;

std::string Decimal(double number) {
    std::array<char, 32> text{};
    constexpr int kDigits = 3;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, kDigits).ptr;
    return {text.data(), end};
}

bool Continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The text, shortened to so many characters.
std::string Shortened(const std::string& text, std::size_t characters) {
    const auto total = static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !Continues(c); }));
    if (total <= characters) {
        return text;
    }
    std::size_t end = 0;
    for (std::size_t kept = 0; kept + 1 < characters; ++kept) {
        do {
            ++end;
        } while (Continues(text[end]));
    }
    return text.substr(0, end) + "\u2026";
}

std::vector<std::string> LinesOf(const DiskPart& part) {
    std::vector<std::string> lines = {TitleOf(part)};
    if (part.extent) {
        const Volume& volume = *part.extent->volume;
        const std::string label = volume.label.value_or("");
        lines.push_back(label == lines.front() ? volume.file_system.value_or("") : label);
    }
    lines.push_back(SizeText(part.place.length, false));
    lines.erase(std::remove(lines.begin(), lines.end(), ""), lines.end());
    return lines;
}

// A size that is cut off would be a false one: it is shown whole or not at all.
PageData VisibleLines(const DiskPart& part, double width) {
    const double room = (width - kTextMargins) / kCharacterWidth;
    if (room < static_cast<double>(kFewestCharacters)) {
        return {false};
    }
    const auto characters = static_cast<std::size_t>(room);
    PageList list;
    const std::vector<std::string> lines = LinesOf(part);
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const std::string text = Shortened(lines[index], characters);
        if (index + 1 == lines.size() && text != lines[index]) {
            break;
        }
        PageData line;
        line["line"] = text;
        line["line_number"] = std::to_string(index + 1);
        line["line_y"] = std::to_string(kFirstLine + kLineHeight * static_cast<int>(index));
        list.push_back(std::move(line));
    }
    return list;
}

// "C:, Data, 119.24 GiB".
std::string TipOf(const DiskPart& part) {
    std::string tip;
    for (const std::string& line : LinesOf(part)) {
        tip += (tip.empty() ? "" : ", ") + line;
    }
    return tip;
}

PageData MapOf(const std::vector<DiskPart>& parts, const MapKind& kind, PageTemplate& piece) {
    PageData map;
    map["map_look"] = kind.look;
    map["map_width"] = std::to_string(kind.width);
    map["drawn"] = FitsMap(parts.size(), kind.width);
    if (map["drawn"].is_false()) {
        return map;
    }
    std::vector<std::uint64_t> lengths;
    std::transform(parts.begin(), parts.end(), std::back_inserter(lengths),
                   [](const DiskPart& part) { return part.place.length; });
    const std::vector<double> widths = MapWidths(lengths, kind.width);
    std::string pieces;
    double x = 0;
    PageData data;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        data["piece_look"] = LookOf(parts[index]);
        data["piece_x"] = Decimal(x);
        data["piece_width"] = Decimal(widths[index]);
        data["piece_tip"] = TipOf(parts[index]);
        data["piece_lines"] = VisibleLines(parts[index], widths[index]);
        data["piece_extended"] = PageData(parts[index].in_extended);
        piece.AppendTo(pieces, data);
        x += widths[index];
    }
    map["pieces"] = pieces;
    return map;
}

}  // namespace

std::string LookOf(const Volume& volume) {
    if (volume.system.value_or(false)) {
        return "windows-volume";
    }
    return volume.boot.value_or(false) ? "start-volume" : "plain-volume";
}

std::string LookOf(const DiskPart& part) {
    if (part.extent) {
        return LookOf(*part.extent->volume);
    }
    switch (part.kind) {
        case PartKind::kGap:
            return "gap";
        case PartKind::kUndescribed:
            return "undescribed";
        case PartKind::kPartition:
        case PartKind::kVolume:
            break;
    }
    return "partition";
}

PageData MapsOf(const std::vector<DiskPart>& parts, PageTemplate& piece) {
    PageList maps;
    if (!parts.empty()) {
        for (const MapKind& kind : kMaps) {
            maps.push_back(MapOf(parts, kind, piece));
        }
    }
    return maps;
}

}  // namespace documents
