#pragma once

#include "documents/model/machine.h"
#include "documents/text/read_error.h"
#include "documents/verify/verify.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace documents {

struct TreeStyle {
    bool bytes = false;                // sizes in bytes instead of human units
    bool colour = false;               // with terminal colours
    std::optional<std::size_t> width;  // longer lines are cut; none: no limit
};

// The machine as a tree for people: disks with their partitions, gaps and volumes. UTF-8, escaped for a
// terminal.
std::string TreeOf(const Machine& machine, const TreeStyle& style);

// "298.1 GiB", or "320072933376 bytes"
std::string SizeText(std::uint64_t bytes, bool in_bytes);

// The members of a document in JSON, by docs/schema/show.schema.json. What the document does not say is left
// out.
nlohmann::ordered_json JsonOf(const std::string& file, const Machine& machine);
// The same for a file that cannot be read.
nlohmann::ordered_json JsonOf(const std::string& file, const std::string& place, const std::string& reason);
nlohmann::ordered_json JsonOf(const std::vector<Finding>& findings);

}  // namespace documents
