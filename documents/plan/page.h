#pragma once

#include "documents/plan/disk_plan.h"
#include "documents/verify/rules.h"

#include <string>
#include <string_view>
#include <vector>

namespace documents {

// plan.md: what goes where, what was assumed, and what cannot be made again. Markdown; texts of the document
// are escaped.
std::string PageOf(const Subject& subject, const std::vector<DiskPlan>& plans,
                   const std::vector<Finding>& losses);

// The text as Markdown shows it, in one line.
std::string MarkdownOf(std::string_view text);

}  // namespace documents
