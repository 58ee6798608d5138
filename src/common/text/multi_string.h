#pragma once

#include <cstddef>
#include <string>
#include <vector>

// What becomes of an entry that is cut off where the characters end.
enum class CutEntry { kLeftOut, kTaken };

// The entries of a multi-string of at most `count` characters, up to the empty entry that ends it. Nothing
// past `count` is read.
std::vector<std::wstring> SplitMultiString(const wchar_t* text, std::size_t count,
                                           CutEntry cut = CutEntry::kLeftOut);
