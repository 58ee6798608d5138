#pragma once

#include "machine/description/description.h"
#include "machine/description/json_cursor.h"
#include "machine/description/text.h"

#include <nlohmann/json.hpp>

#include <concepts>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// The JSON format of descriptions as tables. A row says how one key is read, what its default is, how it is
// written, and what the documentation says about it. A key without a row is refused.
namespace machine::rows {

using Json = nlohmann::ordered_json;

class VolumeNames;

// Where a value stands. Defaults may depend on it.
struct Place {
    const Description* machine = nullptr;              // when reading: with what was read so far
    const std::filesystem::path* directory = nullptr;  // to which image paths are relative
    const Disk* disk = nullptr;                        // that contains the partition
    const WmiClass* derived = nullptr;                 // that the described class overrides
    VolumeNames* names = nullptr;                      // of the volumes before this one
    const JsonObject* object = nullptr;                // that contains the key; null when writing
    std::string key;                                   // in the innermost map
    std::size_t position = 0;                          // in the innermost list
    bool unchecked = false;                            // the object is exempt from its checks
};

// How values of one type are written in JSON. `read` throws DescriptionError.
template <class T>
struct Kind {
    std::string name;  // for the documentation
    std::function<T(const JsonCursor&, const Place&)> read;
    std::function<Json(const T&, const Place&)> write;
};

// The default of a key that must be given.
struct Required {};

// A default that depends on the rows above and on the place. `text` is for the documentation.
template <class Function>
struct Derived {
    std::string text;
    Function function;
};
template <class Function>
Derived(const char*, Function) -> Derived<Function>;

// A constant default as the documentation shows it.
std::string DefaultText(const Json& value);

template <class Member, class Value>
void Assign(Member& member, Value&& value) {
    if constexpr (std::is_arithmetic_v<Member> || std::is_enum_v<Member>) {
        member = static_cast<Member>(value);
    } else {
        member = std::forward<Value>(value);
    }
}

template <class T, class Member>
Json Written(const Kind<T>& kind, const Member& member, const Place& place) {
    return kind.write(static_cast<T>(member), place);
}
template <class T, class Member>
Json Written(const Kind<T>& kind, const std::optional<Member>& member, const Place& place) {
    return member ? Written(kind, *member, place) : Json();
}

// One key of the objects that describe an Owner.
template <class Owner>
struct Row {
    using Take = std::function<void(Owner&, const JsonCursor&, Place&)>;
    using Fill = std::function<void(Owner&, const Place&)>;
    using Value = std::function<std::optional<Json>(const Owner&, const Place&)>;
    using Refusal = std::function<std::string(const Owner&, const Place&)>;

    std::string key;
    std::string kind;       // for the documentation, as the next two
    std::string otherwise;  // the default
    std::string meaning;    // one sentence
    bool required = false;
    Take take;                  // reads the given value
    Fill fill = nullptr;        // sets the default; null: the initial value of the member is the default
    Value value;                // what to write; none for the default
    Refusal refusal = nullptr;  // why the key cannot be given; empty if it can

    // A row that reads and writes in its own way.
    Row(std::string own_key, std::string own_kind, std::string own_otherwise, std::string own_meaning,
        Take own_take, Value own_value, Fill own_fill = nullptr)
        : key(std::move(own_key)),
          kind(std::move(own_kind)),
          otherwise(std::move(own_otherwise)),
          meaning(std::move(own_meaning)),
          take(std::move(own_take)),
          fill(std::move(own_fill)),
          value(std::move(own_value)) {}

    // A key that is no member. `get` returns what to write, false or none for the default; `set` gets the
    // value read.
    template <class T, class Get, class Set>
    requires std::invocable<Get, const Owner&, const Place&> Row(std::string own_key, const Kind<T>& own_kind,
                                                                 std::string own_otherwise,
                                                                 std::string own_meaning, Get get, Set set,
                                                                 Fill own_fill = nullptr)
        : Row(
              std::move(own_key), own_kind.name, std::move(own_otherwise), std::move(own_meaning),
              [own_kind, set](Owner& owner, const JsonCursor& cursor, Place& place) {
                  set(owner, own_kind.read(cursor, place), cursor, place);
              },
              [own_kind, get](const Owner& owner, const Place& place) {
                  const auto own = get(owner, place);
                  return own ? std::optional(Written(own_kind, own, place)) : std::nullopt;
              },
              std::move(own_fill)) {}

    // A member, given as a pointer or as a function object that returns a reference into the owner.
    template <class Member, class T, class Function>
    Row(std::string own_key, Member member, const Kind<T>& own_kind, const Derived<Function>& own_default,
        std::string own_meaning)
        : Row(
              std::move(own_key), own_kind.name, own_default.text, std::move(own_meaning),
              [member, own_kind](Owner& owner, const JsonCursor& cursor, Place& place) {
                  Assign(std::invoke(member, owner), own_kind.read(cursor, place));
              },
              [member, own_kind, own_default](const Owner& owner, const Place& place) {
                  Json own = Written(own_kind, std::invoke(member, owner), place);
                  const bool usual = own == Written(own_kind, own_default.function(owner, place), place);
                  return usual ? std::nullopt : std::optional(std::move(own));
              },
              [member, own_default](Owner& owner, const Place& place) {
                  Assign(std::invoke(member, owner), own_default.function(owner, place));
              }) {}

    // A member whose default is its initial value.
    template <class Member, class T>
    Row(std::string own_key, Member member, const Kind<T>& own_kind, std::string own_meaning)
        : Row(std::move(own_key), member, own_kind,
              Derived{"", [initial = Copy(std::invoke(member, Initial()))](const Owner&,
                                                                           const Place&) { return initial; }},
              std::move(own_meaning)) {
        KeepInitial(DefaultText(Written(own_kind, std::invoke(member, Initial()), Place{})));
    }

    template <class Member, class T>
    Row(std::string own_key, Member member, const Kind<T>& own_kind, Required, std::string own_meaning)
        : Row(
              std::move(own_key), own_kind.name, "required", std::move(own_meaning),
              [member, own_kind](Owner& owner, const JsonCursor& cursor, Place& place) {
                  Assign(std::invoke(member, owner), own_kind.read(cursor, place));
              },
              [member, own_kind](const Owner& owner, const Place& place) {
                  return std::optional(Written(own_kind, std::invoke(member, owner), place));
              }) {
        Require();
    }

    // The same row with another text for its default.
    Row Otherwise(std::string text) && {
        otherwise = std::move(text);
        return std::move(*this);
    }

    // The same row, for objects that do not give a reason to refuse it.
    Row Unless(Refusal own_refusal) && {
        refusal = std::move(own_refusal);
        return std::move(*this);
    }

private:
    static const Owner& Initial() {
        static const Owner initial{};
        return initial;
    }
    // The initial value of the member is the default.
    void KeepInitial(std::string text) {
        otherwise = std::move(text);
        fill = nullptr;
    }
    void Require() { required = true; }

    template <class Member>
    static Member Copy(const Member& member) {
        return member;
    }
};

template <class Owner>
using Table = std::vector<Row<Owner>>;

template <class Owner>
Table<Owner> Joined(std::initializer_list<Table<Owner>> tables) {
    Table<Owner> joined;
    for (const Table<Owner>& table : tables) {
        joined.insert(joined.end(), table.begin(), table.end());
    }
    return joined;
}

template <class Owner>
void FillRow(const Row<Owner>& row, const JsonCursor& cursor, Owner& owner, const Place& place) {
    if (row.required) {
        cursor.Refuse("lacks \"" + row.key + "\"");
    }
    if (row.fill) {
        row.fill(owner, place);
    }
}

// Reads the members of an object, in the order of the rows.
template <class Owner>
void ReadRows(const Table<Owner>& table, const JsonObject& object, Owner& owner, Place& place) {
    place.object = &object;
    for (const Row<Owner>& row : table) {
        const auto given = object.Find(row.key);
        const std::string refusal = row.refusal ? row.refusal(owner, place) : std::string();
        if (!refusal.empty() && given) {
            given->Refuse(refusal);
        }
        if (given) {
            row.take(owner, *given, place);
        } else if (refusal.empty()) {
            FillRow(row, object.cursor(), owner, place);
        }
    }
    object.RefuseOthers();
}

// Writes an object without its defaults.
template <class Owner>
Json WriteRows(const Table<Owner>& table, const Owner& owner, const Place& place) {
    Json object = Json::object();
    for (const Row<Owner>& row : table) {
        if (row.refusal && !row.refusal(owner, place).empty()) {
            continue;
        }
        if (auto value = row.value(owner, place)) {
            object[row.key] = *std::move(value);
        }
    }
    return object;
}

}  // namespace machine::rows
