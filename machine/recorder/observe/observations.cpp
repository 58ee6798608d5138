#include "machine/recorder/observe/observations.h"

#include "machine/description/text.h"

#include <algorithm>
#include <set>

namespace recorder {
namespace {

std::pair<std::string, std::wstring> KeyOf(std::string_view call, std::wstring_view object) {
    return {std::string(call), machine::Folded(object)};
}

// Whether the left answer says more.
bool SaysMore(const Observation& left, const Observation& right) {
    if (left.answer.succeeded() != right.answer.succeeded()) {
        return left.answer.succeeded();
    }
    // A list that broke off, over one that did not begin.
    if (!left.answer.succeeded() && left.answer.parts.size() != right.answer.parts.size()) {
        return left.answer.parts.size() > right.answer.parts.size();
    }
    const bool reads = left.question.access != 0;
    if (reads != (right.question.access != 0)) {
        return reads;
    }
    return left.answer.succeeded() && left.question.size > right.question.size;
}

}  // namespace

void Observations::Add(Observation observation) {
    index_.emplace(KeyOf(observation.question.call, observation.question.object), all_.size());
    all_.push_back(std::move(observation));
}

std::vector<const Observation*> Observations::Find(std::string_view call, std::wstring_view object) const {
    std::vector<const Observation*> found;
    const auto [first, last] = index_.equal_range(KeyOf(call, object));
    for (auto entry = first; entry != last; ++entry) {
        found.push_back(&all_[entry->second]);
    }
    return found;
}

const Observation* Observations::Best(std::string_view call, std::wstring_view object) const {
    const Observation* best = nullptr;
    for (const Observation* observation : Find(call, object)) {
        if (best == nullptr || SaysMore(*observation, *best)) {
            best = observation;
        }
    }
    return best;
}

const Bytes* Observations::BytesOf(std::string_view call, std::wstring_view object) const {
    const Observation* best = Best(call, object);
    return best != nullptr && best->answer.succeeded() ? &best->answer.bytes : nullptr;
}

std::vector<std::wstring> Observations::ObjectsOf(std::string_view call) const {
    std::vector<std::wstring> objects;
    std::set<std::wstring> known;
    for (const Observation& observation : all_) {
        if (observation.question.call == call && known.insert(observation.question.object).second) {
            objects.push_back(observation.question.object);
        }
    }
    return objects;
}

}  // namespace recorder
