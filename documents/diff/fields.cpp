#include "documents/diff/fields.h"

#include <algorithm>

namespace documents::diff {

void AddValues(std::vector<Change>& changes, Kind kind, ValuePair values) {
    const auto found = std::find_if(changes.begin(), changes.end(), [&](const Change& change) {
        return change.kind == kind && kind != Kind::kChanged;
    });
    Change& change = found != changes.end() ? *found : changes.emplace_back();
    change.kind = kind;
    change.values.push_back(std::move(values));
}

void NameAll(std::vector<Change>& changes, const Named& named) {
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change& one, const Change& other) { return one.kind < other.kind; });
    for (Change& change : changes) {
        change.named = named;
    }
}

}  // namespace documents::diff
