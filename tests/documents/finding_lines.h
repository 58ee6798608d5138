#pragma once

#include "documents/verify/verify.h"

#include <set>
#include <string>
#include <vector>

// Findings as lines that tests compare.
namespace finding_lines {

// "D020 error disk 0, partition at 1048576"
inline std::multiset<std::string> Lines(const std::vector<documents::Finding>& findings) {
    std::multiset<std::string> lines;
    for (const documents::Finding& finding : findings) {
        lines.insert(std::string(finding.code) + ' ' + std::string(documents::NameOf(finding.severity)) +
                     ' ' + finding.place);
    }
    return lines;
}

// The lines that are in `after` only.
inline std::multiset<std::string> Added(const std::multiset<std::string>& before,
                                        std::multiset<std::string> after) {
    for (const std::string& line : before) {
        if (const auto found = after.find(line); found != after.end()) {
            after.erase(found);
        }
    }
    return after;
}

}  // namespace finding_lines
