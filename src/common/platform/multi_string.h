#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The entries of a multi-string of at most `count` characters, up to the empty entry that ends it. Nothing
// past `count` is read; an entry that is cut off there is not complete and is left out.
std::vector<std::wstring> SplitMultiString(const wchar_t* text, std::size_t count);
