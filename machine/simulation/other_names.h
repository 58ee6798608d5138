#pragma once

#include "machine/description/description.h"

#include <string>
#include <string_view>
#include <vector>

namespace machine {

// The names that the description adds to this object directory: names of other drivers, every third with more
// than 100 characters, all different. Empty if `directory` has another path.
std::vector<std::wstring> OtherNames(const ObjectDirectory& directory, std::wstring_view path);

// Puts the entries into the order of a hash of their names. The same names always get the same order.
void Shuffle(std::vector<DirectoryEntry>& entries);

}  // namespace machine
