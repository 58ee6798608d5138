#pragma once

#include <random>
#include <string>
#include <vector>

namespace recorder {

// A part of a device name with the unit behind it, which counts in the order too.
struct OrderedPart {
    std::wstring text;   // "ExampleVolume"
    wchar_t behind = 0;  // a backslash or a brace; 0 at the end of the name
    bool stays = false;
    std::wstring made = {};  // set by MakeInOrder, as long as `text`
};

// Makes the texts for all parts, of the same form and in the same order as the originals, unit by unit.
void MakeInOrder(std::vector<OrderedPart>& parts, std::mt19937& random);

}  // namespace recorder
