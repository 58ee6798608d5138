#include "machine/recorder/redact/device_order.h"

#include "machine/recorder/redact/letters.h"

#include <algorithm>

namespace recorder {
namespace {

using Parts = std::vector<OrderedPart*>;

wchar_t UnitAt(const OrderedPart& part, std::size_t position) {
    return position < part.text.size() ? part.text[position] : part.behind;
}

// Parts that are equal up to a position and have the same unit there.
struct Branch {
    wchar_t unit = 0;
    UnitRange range;  // of its replacements
    bool stays = false;
    Parts parts;
};

bool SameRange(const Branch& left, const Branch& right) {
    return left.range.first == right.range.first && left.range.count == right.range.count;
}

UnitRange RangeAt(const OrderedPart& part, std::size_t position) {
    if (position >= part.text.size()) {
        return {};
    }
    const std::wstring folded = FoldedUnits(part.text);
    UnitRange range = ReplacementsOf(folded, position);
    // ASCII letters in lower case come from their own range.
    constexpr wchar_t kToLowerCase = 0x20;
    if (range.first == L'A' && folded[position] != part.text[position]) {
        range.first = static_cast<wchar_t>(range.first + kToLowerCase);
    }
    return range;
}

std::vector<Branch> BranchesOf(const Parts& sorted, std::size_t position) {
    std::vector<Branch> branches;
    for (OrderedPart* part : sorted) {
        const wchar_t unit = UnitAt(*part, position);
        if (branches.empty() || branches.back().unit != unit) {
            branches.push_back({unit, RangeAt(*part, position), false, {}});
        }
        Branch& branch = branches.back();
        branch.parts.push_back(part);
        branch.stays = branch.stays || part->stays || branch.range.count == 0;
    }
    return branches;
}

// `count` units from `first` to before `end`, at random and in order.
std::vector<wchar_t> Drawn(unsigned first, unsigned end, std::size_t count, std::mt19937& random) {
    std::vector<wchar_t> drawn;
    for (unsigned unit = first; unit < end; ++unit) {
        const auto left = end - unit;
        if (random() % left < count - drawn.size()) {
            drawn.push_back(static_cast<wchar_t>(unit));
        }
    }
    return drawn;
}

// The new units of the branches: those that stay, and between them others of their range.
std::vector<wchar_t> NewUnits(const std::vector<Branch>& branches, std::mt19937& random) {
    std::vector<wchar_t> units;
    while (units.size() < branches.size()) {
        const std::size_t at = units.size();
        if (branches[at].stays) {
            units.push_back(branches[at].unit);
            continue;
        }
        std::size_t last = at;
        while (last < branches.size() && !branches[last].stays && SameRange(branches[last], branches[at])) {
            ++last;
        }
        const UnitRange range = branches[at].range;
        unsigned first = range.first;
        unsigned end = first + range.count;
        if (at > 0 && units.back() >= first) {
            first = units.back() + 1U;
        }
        if (last < branches.size() && branches[last].unit < end && branches[last].unit >= first) {
            end = branches[last].unit;
        }
        const std::vector<wchar_t> drawn = Drawn(first, end, last - at, random);
        for (std::size_t i = at; i < last; ++i) {
            // Without room for others, the units stay. A search then finds them (leak_search.h).
            units.push_back(drawn.size() == last - at ? drawn[i - at] : branches[i].unit);
        }
    }
    return units;
}

void Make(const Parts& sorted, std::size_t position, std::mt19937& random) {
    const std::vector<Branch> branches = BranchesOf(sorted, position);
    const std::vector<wchar_t> units = NewUnits(branches, random);
    for (std::size_t i = 0; i < branches.size(); ++i) {
        Parts unfinished;
        for (OrderedPart* part : branches[i].parts) {
            if (position < part->text.size()) {
                part->made += units[i];
                unfinished.push_back(part);
            }
        }
        if (!unfinished.empty()) {
            Make(unfinished, position + 1, random);
        }
    }
}

}  // namespace

void MakeInOrder(std::vector<OrderedPart>& parts, std::mt19937& random) {
    Parts sorted;
    for (OrderedPart& part : parts) {
        part.made.clear();
        sorted.push_back(&part);
    }
    std::sort(sorted.begin(), sorted.end(), [](const OrderedPart* left, const OrderedPart* right) {
        return left->text + left->behind < right->text + right->behind;
    });
    if (!sorted.empty()) {
        Make(sorted, 0, random);
    }
}

}  // namespace recorder
