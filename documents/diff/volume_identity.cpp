#include "documents/diff/volume_identity.h"

#include "documents/diff/pairing.h"

#include <optional>
#include <string>
#include <utility>

namespace documents::diff {

namespace {

enum Basis { kByPath, kBySerial, kByPlace, kByDevice };

using DiskKey = std::string (DiskPairs::*)(std::uint32_t number) const;

std::optional<std::string> PathOf(const Volume& volume) {
    return volume.path;
}

std::optional<std::string> SerialOf(const Volume& volume) {
    return volume.serial.value_or(0) == 0 ? std::nullopt : std::optional(std::to_string(*volume.serial));
}

std::optional<std::string> DeviceOf(const Volume& volume) {
    return volume.device;
}

bool HasPlace(const Volume& volume) {
    return volume.extents && !volume.extents->empty();
}

bool HasOnlyDevice(const Volume& volume) {
    return !PathOf(volume) && !SerialOf(volume) && !HasPlace(volume);
}

std::optional<std::string> PlaceOf(const Volume& volume, const DiskPairs& disks, DiskKey key) {
    if (!HasPlace(volume)) {
        return std::nullopt;
    }
    std::string place;
    for (const Extent& extent : *volume.extents) {
        place += (disks.*key)(extent.disk) + '@' + std::to_string(extent.place.start) + ' ';
    }
    return place;
}

Pairing PairAll(const std::vector<Volume>& before, const std::vector<Volume>& after, const DiskPairs& disks) {
    const Pairing::Key place_before = [&](std::size_t index) {
        return PlaceOf(before[index], disks, &DiskPairs::KeyOfBefore);
    };
    const Pairing::Key place_after = [&](std::size_t index) {
        return PlaceOf(after[index], disks, &DiskPairs::KeyOfAfter);
    };
    using ValueOf = std::optional<std::string> (*)(const Volume& volume);
    Pairing pairing(before.size(), after.size());
    for (const auto& [value_of, basis] :
         {std::pair<ValueOf, Basis>{PathOf, kByPath}, std::pair<ValueOf, Basis>{SerialOf, kBySerial}}) {
        const ValueOf key_of = value_of;
        pairing.Run({[&, key_of](std::size_t index) { return key_of(before[index]); },
                     [&, key_of](std::size_t index) { return key_of(after[index]); }, place_before,
                     place_after, nullptr},
                    basis);
    }
    pairing.Run({place_before, place_after, place_before, place_after, nullptr}, kByPlace);
    pairing.Run({[&](std::size_t index) { return DeviceOf(before[index]); },
                 [&](std::size_t index) { return DeviceOf(after[index]); }, place_before, place_after,
                 [&](std::size_t one, std::size_t other) {
                     return HasOnlyDevice(before[one]) || HasOnlyDevice(after[other]);
                 }},
                kByDevice);
    return pairing;
}

// The first guess among the disks of the volume.
std::string_view GuessOf(const Volume& volume, const DiskPairs& disks) {
    for (const Extent& extent : *volume.extents) {
        const DiskPair* const disk = disks.OfBefore(extent.disk);
        if (disk != nullptr && !disk->guess.empty()) {
            return disk->guess;
        }
    }
    return {};
}

}  // namespace

std::vector<VolumePair> PairVolumes(const Machine& before, const Machine& after, const DiskPairs& disks) {
    const Pairing pairing = PairAll(before.volumes, after.volumes, disks);
    std::vector<VolumePair> pairs;
    for (std::size_t index = 0; index < before.volumes.size(); ++index) {
        const Volume& volume = before.volumes[index];
        const std::optional<std::size_t> partner = pairing.AfterOf(index);
        const bool by_place = partner && pairing.BasisOf(index) == kByPlace;
        pairs.push_back({&volume, partner ? &after.volumes[*partner] : nullptr, by_place,
                         by_place ? GuessOf(volume, disks) : std::string_view()});
    }
    for (std::size_t index = 0; index < after.volumes.size(); ++index) {
        if (!pairing.BeforeOf(index)) {
            pairs.push_back({nullptr, &after.volumes[index], false, {}});
        }
    }
    return pairs;
}

}  // namespace documents::diff
