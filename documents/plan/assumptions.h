#pragma once

#include "documents/plan/table.h"

#include <string>
#include <vector>

namespace documents {

// What the document does not say of the table, and what the script has for it. Sentences in Markdown.
std::vector<std::string> AssumptionsOf(const Disk& disk, const Table& table);

}  // namespace documents
