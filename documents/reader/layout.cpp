#include "documents/reader/layout.h"

#include <utility>

namespace documents {

std::vector<std::string> NumberedTexts(Machine& machine, Row& row, std::string_view count,
                                       std::string_view name, std::size_t first) {
    const std::uint64_t said = row.Unsigned(count);
    std::vector<std::string> texts = row.Numbered(name, first);
    NoteWrongCount(machine, row, count, said, texts.size());
    return texts;
}

void NoteWrongCount(Machine& machine, const Row& row, std::string_view count, std::uint64_t said,
                    std::uint64_t there) {
    if (said != there) {
        NoteFault(machine, FormFault::Kind::kWrongCount, row, count,
                  "the document says " + std::to_string(said) + ", and has " + std::to_string(there));
    }
}

void NoteFault(Machine& machine, FormFault::Kind kind, const Row& parent, std::string_view name,
               std::string text) {
    if (machine.form_faults.size() < kMostFaults) {
        machine.form_faults.push_back(
            {kind, parent.path().empty() ? std::string(name) : parent.path() + "/" + std::string(name),
             std::move(text)});
    }
}

}  // namespace documents
