#pragma once

#include "documents/commands/command.h"

#include <nlohmann/json.hpp>

#include <string>

namespace documents {

// The text of a JSON value, for a terminal too: characters that change what it shows are written as "\u202E".
// Indented, or in one line. Ends in a line feed.
std::string JsonText(const nlohmann::ordered_json& json, bool indented);

// Collects one object for each document: {"schema": 1, "documents": [...]}, or with `lines` an object a line,
// {"schema": 1, ...}, each written at once.
class DocumentObjects {
public:
    DocumentObjects(const Terminal& terminal, bool lines) : terminal_(terminal), lines_(lines) {}

    void Add(const nlohmann::ordered_json& object);
    // Writes what is not written yet.
    void Finish();

private:
    const Terminal& terminal_;
    bool lines_;
    nlohmann::ordered_json documents_ = nlohmann::ordered_json::array();
};

}  // namespace documents
