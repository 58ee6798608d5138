#pragma once

#include <cstddef>
#include <string>
#include <vector>

// What to do with a last entry that is truncated by the character limit.
enum class CutEntry { kLeftOut, kTaken };

// Splits a multi-string of at most `count` characters into its entries, up to the empty entry that ends it.
// Reads nothing past `count`.
std::vector<std::wstring> SplitMultiString(const wchar_t* text, std::size_t count,
                                           CutEntry cut = CutEntry::kLeftOut);
