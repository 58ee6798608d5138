#include "documents/diff/output.h"

#include <array>

namespace documents::diff {

std::string_view NameOf(Object object) {
    static constexpr std::array<std::string_view, 4> kNames = {"machine", "disk", "partition", "volume"};
    return kNames.at(static_cast<std::size_t>(object));
}

std::string_view NameOf(Kind kind) {
    static constexpr std::array<std::string_view, 14> kNames = {
        "added",     "removed", "replaced",   "renumbered",  "resized",   "moved", "retyped",
        "converted", "dynamic", "relabelled", "reformatted", "remounted", "role",  "changed"};
    return kNames.at(static_cast<std::size_t>(kind));
}

}  // namespace documents::diff
