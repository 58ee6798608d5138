#include "documents/diff/compare.h"

#include "documents/diff/disk_changes.h"
#include "documents/diff/disk_identity.h"
#include "documents/diff/machine_changes.h"
#include "documents/diff/naming.h"
#include "documents/diff/partition_changes.h"
#include "documents/diff/said.h"
#include "documents/diff/volume_changes.h"
#include "documents/diff/volume_identity.h"
#include "documents/model/lookup.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace documents::diff {

namespace {

bool Has(const std::vector<Change>& changes, Kind kind) {
    return std::any_of(changes.begin(), changes.end(),
                       [&](const Change& change) { return change.kind == kind; });
}

class Comparison {
public:
    Comparison(const Machine& before, const Machine& after, const CompareOptions& options)
        : before_(before),
          after_(after),
          rules_{options.all, before.format == after.format},
          disks_(before, after) {}

    std::vector<Change> Run() {
        Append(CompareFacts(before_, after_, rules_));
        AppendDisks();
        AppendVolumes();
        return std::move(all_);
    }

private:
    void Append(std::vector<Change> changes) {
        std::move(changes.begin(), changes.end(), std::back_inserter(all_));
    }

    void AppendPair(const DiskPair& pair) {
        std::vector<Change> changes = CompareDisk(pair, rules_);
        const bool turned = Has(changes, Kind::kDynamic);
        Append(std::move(changes));
        if (turned) {
            turned_.insert(pair.before->number);
        } else if (TablesAreKnown(pair, rules_)) {
            Append(ComparePartitions(pair, rules_));
        }
    }

    // A disk without a partner: the other document's disk with its number, if that has no partner either.
    const Disk* ReplacementOf(const Disk& disk) const {
        const Disk* const other = FindDisk(after_, disk.number);
        return other != nullptr && disks_.OfAfter(disk.number) == nullptr ? other : nullptr;
    }

    void AppendDisks() {
        std::set<std::uint32_t> replacements;
        for (const Disk& disk : before_.disks) {
            if (const DiskPair* const pair = disks_.OfBefore(disk.number)) {
                AppendPair(*pair);
            } else if (const Disk* const other = ReplacementOf(disk)) {
                replacements.insert(other->number);
                all_.push_back(WholeDisk(Kind::kReplaced, &disk, other));
            } else if (SaysDisk(after_.format, before_.format, disk)) {
                all_.push_back(WholeDisk(Kind::kRemoved, &disk, nullptr));
            }
        }
        for (const Disk& disk : after_.disks) {
            if (disks_.OfAfter(disk.number) == nullptr && !replacements.contains(disk.number) &&
                SaysDisk(before_.format, after_.format, disk)) {
                all_.push_back(WholeDisk(Kind::kAdded, nullptr, &disk));
            }
        }
    }

    bool LiesOnTurnedDisk(const Volume& volume) const {
        return volume.extents &&
               std::any_of(volume.extents->begin(), volume.extents->end(),
                           [&](const Extent& extent) { return turned_.contains(extent.disk); });
    }

    // Whether the volume has no partner because the other format leaves it out.
    bool IsLeftOut(const VolumePair& pair) const {
        return (pair.before == nullptr && !SaysVolume(before_.format, after_, *pair.after)) ||
               (pair.after == nullptr && !SaysVolume(after_.format, before_, *pair.before));
    }

    void AppendVolumes() {
        for (const VolumePair& pair : PairVolumes(before_, after_, disks_)) {
            if (IsLeftOut(pair)) {
                continue;
            }
            const bool turned = pair.before != nullptr && LiesOnTurnedDisk(*pair.before);
            const std::string id =
                pair.before != nullptr ? IdOf(before_, *pair.before) : IdOf(after_, *pair.after);
            Append(CompareVolume(pair, id, disks_, turned, rules_));
        }
    }

    const Machine& before_;
    const Machine& after_;
    CompareRules rules_;
    DiskPairs disks_;
    std::set<std::uint32_t> turned_;  // disks of `before_` that have become dynamic or basic
    std::vector<Change> all_;
};

}  // namespace

std::vector<Change> Compare(const Machine& before, const Machine& after, const CompareOptions& options) {
    return Comparison(before, after, options).Run();
}

}  // namespace documents::diff
