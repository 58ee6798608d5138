#include "documents/diff/pairing.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

namespace documents::diff {

namespace {

// More that may not pair are not looked at: a made-up document can have 100,000 equal disks.
constexpr std::ptrdiff_t kMostCandidates = 1000;

}  // namespace

// The elements with one key, by index.
struct Pairing::Group {
    std::vector<std::size_t> before;
    std::vector<std::size_t> after;
};

Pairing::Pairing(std::size_t before, std::size_t after)
    : after_of_(before), before_of_(after), basis_(before) {}

void Pairing::Pair(std::size_t before, std::size_t after, int basis) {
    after_of_[before] = after;
    before_of_[after] = before;
    basis_[before] = basis;
}

void Pairing::Run(const Pass& pass, int basis) {
    std::vector<Group> groups;
    std::unordered_map<std::string, std::size_t> group_of_key;
    for (std::size_t index = 0; index < after_of_.size(); ++index) {
        const std::optional<std::string> key = after_of_[index] ? std::nullopt : pass.before(index);
        if (key) {
            const auto [group, is_new] = group_of_key.emplace(*key, groups.size());
            if (is_new) {
                groups.emplace_back();
            }
            groups[group->second].before.push_back(index);
        }
    }
    for (std::size_t index = 0; index < before_of_.size(); ++index) {
        const std::optional<std::string> key = before_of_[index] ? std::nullopt : pass.after(index);
        const auto group = key ? group_of_key.find(*key) : group_of_key.end();
        if (group != group_of_key.end()) {
            groups[group->second].after.push_back(index);
        }
    }
    for (Group& group : groups) {
        if (group.before.size() > 1 || group.after.size() > 1) {
            PairNear(group, pass, basis);
        }
        PairInOrder(group, pass, basis);
    }
}

void Pairing::PairNear(Group& group, const Pass& pass, int basis) {
    std::unordered_map<std::string, std::size_t> nearest;
    for (const std::size_t after : group.after) {
        if (const std::optional<std::string> key = pass.near_after(after)) {
            nearest.emplace(*key, after);
        }
    }
    for (const std::size_t before : group.before) {
        const std::optional<std::string> key = pass.near_before(before);
        const auto found = key ? nearest.find(*key) : nearest.end();
        if (found != nearest.end() && !before_of_[found->second] &&
            (!pass.allowed || pass.allowed(before, found->second))) {
            Pair(before, found->second, basis);
        }
    }
    std::erase_if(group.before, [&](std::size_t index) { return after_of_[index].has_value(); });
    std::erase_if(group.after, [&](std::size_t index) { return before_of_[index].has_value(); });
}

void Pairing::PairInOrder(Group& group, const Pass& pass, int basis) {
    std::size_t first_free = 0;
    for (const std::size_t before : group.before) {
        while (first_free < group.after.size() && before_of_[group.after[first_free]]) {
            ++first_free;
        }
        const auto begin = group.after.begin() + static_cast<std::ptrdiff_t>(first_free);
        const auto end = begin + std::min(group.after.end() - begin, kMostCandidates);
        const auto found = std::find_if(begin, end, [&](std::size_t after) {
            return !before_of_[after] && (!pass.allowed || pass.allowed(before, after));
        });
        if (found != end) {
            Pair(before, *found, basis);
        }
    }
}

}  // namespace documents::diff
