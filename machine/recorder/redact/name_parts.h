#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace recorder {

// A part of a name: text, a GUID with its braces, or a unit that separates.
struct NamePart {
    enum class Kind { kText, kGuid, kSeparator };
    std::wstring text;
    Kind kind = Kind::kText;
};

// The parts of a name, which together are the name: "Example{...}\Volume" is "Example", "{...}", "\" and
// "Volume".
std::vector<NamePart> PartsOf(std::wstring_view name, std::wstring_view separators);

}  // namespace recorder
