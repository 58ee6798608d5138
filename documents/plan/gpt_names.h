#pragma once

#include "documents/model/disk.h"

#include <string_view>

namespace documents {

// The name and the attributes that Windows gives to GPT partitions of the type. Attributes as sfdisk writes
// them; both are empty for a type whose name is not known.
struct GptName {
    std::string_view type;
    std::string_view name;
    std::string_view attributes;
};
GptName GptNameOf(const Partition& partition);

}  // namespace documents
