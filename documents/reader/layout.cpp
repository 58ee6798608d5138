#include "documents/reader/layout.h"

namespace documents {

std::vector<std::string> NumberedTexts(Machine& machine, Row& row, std::string_view count,
                                       std::string_view name, std::size_t first) {
    const std::uint64_t said = row.Unsigned(count);
    std::vector<std::string> texts;
    std::string next = std::string(name) + std::to_string(first);
    while (row.Has(next)) {
        texts.emplace_back(row.Text(next));
        next = std::string(name) + std::to_string(first + texts.size());
    }
    NoteWrongCount(machine, row, count, said, texts.size());
    return texts;
}

void NoteWrongCount(Machine& machine, const Row& row, std::string_view count, std::uint64_t said,
                    std::uint64_t there) {
    if (said != there) {
        machine.form_faults.push_back(
            {FormFault::Kind::kWrongCount, row.path() + "/" + std::string(count),
             "the document says " + std::to_string(said) + ", and has " + std::to_string(there)});
    }
}

}  // namespace documents
