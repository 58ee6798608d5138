#include "documents/verify/rules.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace documents {

void Report::ByVolumes(const Subject& subject, const Disk& disk, std::string text) {
    if (subject.extents.On(disk.number).empty()) {
        Note(PlaceOf(disk), std::move(text));
    } else {
        Error(PlaceOf(disk), std::move(text) + " Volumes lie on it.");
    }
}

std::string PlaceOf(const Disk& disk) {
    return "disk " + std::to_string(disk.number);
}

std::string PlaceOf(const Disk& disk, const Partition& partition) {
    return PlaceOf(disk) + ", partition at " + std::to_string(partition.place.start);
}

std::string PlaceOf(const Volume& volume) {
    if (volume.letter && !volume.letter->empty()) {
        return "volume " + *volume.letter;
    }
    return "volume " + volume.path.value_or(volume.device.value_or("without a name"));
}

std::string TextOf(const Range& range) {
    return std::to_string(range.start) + " to " + std::to_string(EndOf(range) - (range.length == 0 ? 0 : 1));
}

std::string ListOf(const std::vector<std::uint32_t>& numbers) {
    std::string text;
    for (std::size_t begin = 0; begin < numbers.size();) {
        std::size_t end = begin + 1;
        while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) {
            ++end;
        }
        text += (text.empty() ? "" : ", ") + std::to_string(numbers[begin]);
        if (end - begin > 1) {
            text += (end - begin == 2 ? ", " : " to ") + std::to_string(numbers[end - 1]);
        }
        begin = end;
    }
    return text;
}

std::string SignatureText(std::uint32_t signature) {
    std::array<char, 8> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), signature, 16).ptr;
    std::string text(digits.data(), end);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return "0x" + std::string(digits.size() - text.size(), '0') + text;
}

}  // namespace documents
