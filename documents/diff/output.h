#pragma once

#include "documents/diff/change.h"
#include "documents/model/machine.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace documents::diff {

// "volume", "relabelled"
std::string_view NameOf(Object object);
std::string_view NameOf(Kind kind);

// One sentence, "Disk 0: resized from 100 GiB to 200 GiB", without a line feed. It can contain any character
// of the documents.
std::string SentenceOf(const Change& change);

struct Compared {
    std::optional<std::string> file;  // its name as given; none: captured now
    Format format = Format::kTwo;
};

// The object of docs/schema/diff.schema.json.
nlohmann::ordered_json JsonOf(const std::vector<Change>& changes, const Compared& before,
                              const Compared& after);

}  // namespace documents::diff
