#include "documents/diff/partition_identity.h"

#include "documents/diff/pairing.h"
#include "documents/model/lookup.h"

#include <optional>
#include <string>

namespace documents::diff {

std::vector<PartitionPair> PairPartitions(const Disk& before, const Disk& after) {
    const std::vector<const Partition*> olds = PartitionsByOffset(before);
    const std::vector<const Partition*> news = PartitionsByOffset(after);
    const auto id_of = [](const std::vector<const Partition*>& list) {
        return [&](std::size_t index) { return list[index]->id; };
    };
    const auto offset_of = [](const std::vector<const Partition*>& list) {
        return [&](std::size_t index) { return std::optional(std::to_string(list[index]->place.start)); };
    };
    enum Basis { kById, kByOffset };
    Pairing pairing(olds.size(), news.size());
    pairing.Run({id_of(olds), id_of(news), offset_of(olds), offset_of(news), nullptr}, kById);
    pairing.Run({offset_of(olds), offset_of(news), offset_of(olds), offset_of(news), nullptr}, kByOffset);

    std::vector<PartitionPair> pairs;
    for (std::size_t index = 0; index < olds.size(); ++index) {
        const std::optional<std::size_t> partner = pairing.AfterOf(index);
        pairs.push_back(
            {olds[index], partner ? news[*partner] : nullptr, partner && pairing.BasisOf(index) == kById});
    }
    for (std::size_t index = 0; index < news.size(); ++index) {
        if (!pairing.BeforeOf(index)) {
            pairs.push_back({nullptr, news[index], false});
        }
    }
    return pairs;
}

}  // namespace documents::diff
