#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace documents::diff {

// Finds the partners of two lists, in several passes. Each pass pairs what has no partner yet.
class Pairing {
public:
    using Key = std::function<std::optional<std::string>(std::size_t index)>;

    struct Pass {
        Key before;  // the key of an element of the first list; none: the pass leaves it alone
        Key after;   // of the second
        // Among several with one key those pair first that agree in this too; the others in their order.
        Key near_before;
        Key near_after;
        // Whether two with the same key may pair; empty: always.
        std::function<bool(std::size_t before, std::size_t after)> allowed;
    };

    Pairing(std::size_t before, std::size_t after);

    // `basis` is what BasisOf then says of the pairs.
    void Run(const Pass& pass, int basis);
    void Pair(std::size_t before, std::size_t after, int basis);

    std::optional<std::size_t> AfterOf(std::size_t before) const { return after_of_[before]; }
    std::optional<std::size_t> BeforeOf(std::size_t after) const { return before_of_[after]; }
    // Of a pair.
    int BasisOf(std::size_t before) const { return basis_[before]; }

private:
    struct Group;
    void PairNear(Group& group, const Pass& pass, int basis);
    void PairInOrder(Group& group, const Pass& pass, int basis);

    std::vector<std::optional<std::size_t>> after_of_;
    std::vector<std::optional<std::size_t>> before_of_;
    std::vector<int> basis_;
};

}  // namespace documents::diff
