#pragma once

#include "documents/diff/change.h"

#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// Comparison by tables: a row for each value of a disk, a partition or a volume.
namespace documents::diff {

enum FieldFlags : unsigned {
    kNoFlags = 0,
    kOnlyAll = 1,                     // changes by itself: only with CompareOptions::all
    kMayVanish = 2,                   // a change if only one of two documents of one format has it
    kDescribes = 4,                   // part of the description of what was added, removed or replaced
    kOnlyDescribes = kDescribes | 8,  // not compared
    kSilent = 16,                     // for programs only, in descriptions
};

template <class T>
struct Field {
    const char* name;
    const char* words;
    Unit unit;
    Kind kind;
    unsigned flags;
    Value (*value)(const T& object);
};

struct CompareRules {
    bool all = false;
    bool same_format = false;
};

template <class T>
Value ValueOf(const std::optional<T>& value) {
    if (!value) {
        return {};
    }
    if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, std::string>) {
        return *value;
    } else {
        return std::uint64_t{*value};
    }
}

// Adds the values to the change of that kind, or adds a change. Each value of kChanged is a change of its
// own.
void AddValues(std::vector<Change>& changes, Kind kind, ValuePair values);

template <class T>
void CompareField(const Field<T>& field, const T& before, const T& after, const CompareRules& rules,
                  std::vector<Change>& changes) {
    if ((field.flags & kOnlyDescribes) == kOnlyDescribes || ((field.flags & kOnlyAll) != 0 && !rules.all)) {
        return;
    }
    Value old_value = field.value(before);
    Value new_value = field.value(after);
    if (old_value == new_value) {
        return;
    }
    Kind kind = field.kind;
    if (old_value.index() == 0 || new_value.index() == 0) {
        if (!rules.same_format || (field.flags & kMayVanish) == 0) {
            return;
        }
        kind = Kind::kChanged;
    }
    AddValues(changes, kind,
              {field.name, field.words, field.unit, std::move(old_value), std::move(new_value)});
}

// Sorts the changes of one object by kind, and says in each of them which object it is.
void NameAll(std::vector<Change>& changes, const Named& named);

// The changes of one object, not yet named.
template <class T>
std::vector<Change> CompareFields(std::span<const Field<T>> fields, const T& before, const T& after,
                                  const CompareRules& rules) {
    std::vector<Change> changes;
    for (const Field<T>& field : fields) {
        CompareField(field, before, after, rules, changes);
    }
    return changes;
}

// The values that describe an object; `before` or `after` is null for what was added or removed.
template <class T>
std::vector<ValuePair> Describe(std::span<const Field<T>> fields, const T* before, const T* after) {
    std::vector<ValuePair> values;
    for (const Field<T>& field : fields) {
        if ((field.flags & kDescribes) != 0) {
            ValuePair pair{field.name,
                           field.words,
                           field.unit,
                           before != nullptr ? field.value(*before) : Value(),
                           after != nullptr ? field.value(*after) : Value(),
                           (field.flags & kSilent) != 0};
            if (pair.before.index() != 0 || pair.after.index() != 0) {
                values.push_back(std::move(pair));
            }
        }
    }
    return values;
}

}  // namespace documents::diff
