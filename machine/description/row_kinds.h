#pragma once

#include "machine/description/rows.h"
#include "machine/description/text.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

// Kinds that are made of others: objects, lists and maps.
namespace machine::rows {

// Checks an object, or remembers it, after its last row. `object` is null when writing.
template <class Owner>
using Finish = std::function<void(const Owner&, const JsonObject* object, const Place&)>;

// An object with rows. In the short form, the value of the first row may stand for an object without other
// keys.
enum class Form { kFull, kShort };

template <class Owner>
Kind<Owner> Object(std::string name, const Table<Owner>& table, Form form = Form::kFull,
                   Finish<Owner> finish = nullptr) {
    return {std::move(name),
            [table, form, finish](const JsonCursor& cursor, const Place& outer) {
                Owner owner{};
                Place place = outer;
                if (form == Form::kShort && (!cursor.is_object() || cursor.is_utf16())) {
                    table.front().take(owner, cursor, place);
                    for (auto row = table.begin() + 1; row != table.end(); ++row) {
                        FillRow(*row, cursor, owner, place);
                    }
                    return owner;
                }
                const JsonObject object = cursor.Object();
                ReadRows(table, object, owner, place);
                if (finish) {
                    finish(owner, &object, place);
                }
                return owner;
            },
            [table, form, finish](const Owner& owner, const Place& outer) {
                Place place = outer;
                place.object = nullptr;
                Json object = WriteRows(table, owner, place);
                if (finish) {
                    finish(owner, nullptr, place);
                }
                const std::string& first = table.front().key;
                return form == Form::kShort && object.size() == 1 && object.contains(first)
                           ? Json(object[first])
                           : object;
            }};
}

// A key whose value is an object with further members of the owner.
template <class Owner>
Row<Owner> Group(std::string key, std::string kind, std::string otherwise, std::string meaning,
                 const Table<Owner>& table) {
    return {std::move(key),
            std::move(kind),
            std::move(otherwise),
            std::move(meaning),
            [table](Owner& owner, const JsonCursor& cursor, Place& place) {
                Place inner = place;
                ReadRows(table, cursor.Object(), owner, inner);
            },
            [table](const Owner& owner, const Place& place) {
                Json object = WriteRows(table, owner, place);
                return object.empty() || object == WriteRows(table, Owner{}, place) ? std::nullopt
                                                                                    : std::optional(object);
            },
            [table](Owner& owner, const Place& place) {
                for (const Row<Owner>& row : table) {
                    if (row.fill) {
                        row.fill(owner, place);
                    }
                }
            }};
}

template <class Container, class T>
Kind<Container> ListOf(std::string name, const Kind<T>& element) {
    return {std::move(name),
            [element](const JsonCursor& cursor, const Place& outer) {
                Container values;
                Place place = outer;
                place.position = 0;
                for (const JsonCursor& own : cursor.Elements()) {
                    values.insert(values.end(), element.read(own, place));
                    ++place.position;
                }
                return values;
            },
            [element](const Container& values, const Place& outer) {
                Json list = Json::array();
                Place place = outer;
                place.position = 0;
                for (const T& value : values) {
                    list.push_back(element.write(value, place));
                    ++place.position;
                }
                return list;
            }};
}

template <class T>
Kind<std::vector<T>> List(std::string name, const Kind<T>& element) {
    return ListOf<std::vector<T>>(std::move(name), element);
}

// An object that maps names to values; the name is a member of the value. `refusal` says why a name is not
// valid, and is null if it is.
template <class T>
Kind<std::vector<T>> Map(std::string name, std::wstring T::*own_name,
                         const char* (*refusal)(const std::string&), const Kind<T>& element) {
    return {std::move(name),
            [own_name, refusal, element](const JsonCursor& cursor, const Place& outer) {
                std::vector<T> values;
                Place place = outer;
                for (const auto& [key, own] : cursor.Object().Members()) {
                    if (const char* reason = refusal(key)) {
                        own.Refuse(reason);
                    }
                    place.key = key;
                    values.push_back(element.read(own, place));
                    values.back().*own_name = Widen(key);
                }
                return values;
            },
            [own_name, element](const std::vector<T>& values, const Place& outer) {
                Json map = Json::object();
                Place place = outer;
                for (const T& value : values) {
                    place.key = Narrow(value.*own_name);
                    map[place.key] = element.write(value, place);
                }
                return map;
            }};
}

}  // namespace machine::rows
