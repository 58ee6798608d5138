#pragma once

#include "documents/model/machine.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

enum class Severity { kError, kNote };

// "error" or "note"
std::string_view NameOf(Severity severity);

// Something that keeps a document from being restored from (an error), or that whoever restores has to know.
struct Finding {
    std::string_view code;  // "D012"; never reused
    Severity severity = Severity::kError;
    std::string place;  // "disk 0", or the path of an element for the form
    std::string text;   // a sentence
};

// A code and what it stands for; docs/reasons.md has the same table.
struct FindingCode {
    std::string_view code;
    std::string_view title;
};

// All codes of documents, in their order.
std::vector<FindingCode> FindingCodes();

// What is found in a document, by code.
std::vector<Finding> Verify(const Machine& machine);

bool HasErrors(const std::vector<Finding>& findings);

}  // namespace documents
