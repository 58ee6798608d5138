#include "documents/diff/output.h"

#include <nlohmann/json.hpp>

namespace documents::diff {

namespace {

using Json = nlohmann::ordered_json;

Json JsonOfValue(std::monostate /*unknown*/) {
    return nullptr;
}

template <class T>
Json JsonOfValue(const T& value) {
    return value;
}

Json JsonOfValue(const std::vector<Place>& places) {
    Json array = Json::array();
    for (const Place& place : places) {
        Json object = Json::object();
        if (place.disk) {
            object["disk"] = *place.disk;
        }
        object["start"] = place.start;
        object["length"] = place.length;
        array.push_back(std::move(object));
    }
    return array;
}

Json JsonOfValues(const Change& change, Value ValuePair::*side, Kind absent) {
    if (change.kind == absent) {
        return nullptr;
    }
    Json object = Json::object();
    for (const ValuePair& pair : change.values) {
        object[pair.name] = std::visit([](const auto& value) { return JsonOfValue(value); }, pair.*side);
    }
    return object;
}

Json JsonOfChange(const Change& change) {
    return {
        {"object", NameOf(change.named.object)},
        {"kind", NameOf(change.kind)},
        {"id", change.named.id.empty() ? Json(nullptr) : Json(change.named.id)},
        {"guess", !change.named.guess.empty()},
        {"old", JsonOfValues(change, &ValuePair::before, Kind::kAdded)},
        {"new", JsonOfValues(change, &ValuePair::after, Kind::kRemoved)},
    };
}

Json JsonOfCompared(const Compared& compared) {
    return {{"file", compared.file ? Json(*compared.file) : Json(nullptr)},
            {"format", static_cast<int>(compared.format)}};
}

}  // namespace

nlohmann::ordered_json JsonOf(const std::vector<Change>& changes, const Compared& before,
                              const Compared& after) {
    Json list = Json::array();
    for (const Change& change : changes) {
        list.push_back(JsonOfChange(change));
    }
    return {
        {"schema", 1},
        {"old", JsonOfCompared(before)},
        {"new", JsonOfCompared(after)},
        {"same", changes.empty()},
        {"changes", std::move(list)},
    };
}

}  // namespace documents::diff
