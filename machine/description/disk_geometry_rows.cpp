// The geometry of a disk and its detection record, which the extended geometry control returns together.

#include "machine/description/description.h"
#include "machine/description/tables.h"

#include <cstdint>

namespace machine::rows {
namespace {

constexpr NamedNumber kDetectionTypes[] = {{"none", 0}, {"int13", 1}, {"exint13", 2}};

// A member of a member.
template <auto Outer, auto Inner>
struct In {
    template <class Owner>
    auto& operator()(Owner& owner) const {
        return (owner.*Outer).*Inner;
    }
};

}  // namespace

const Table<Disk>& GeometryTable() {
    static const Table<Disk> table = {
        {"tracksPerCylinder", &Disk::tracks_per_cylinder, Number(), ""},
        {"sectorsPerTrack", &Disk::sectors_per_track, Number(), ""},
        {"cylinders", &Disk::cylinders, LongNumber(),
         Derived{"as many whole cylinders as fit the size",
                 [](const Disk& disk, const Place&) {
                     const std::uint64_t cylinder = std::uint64_t{disk.tracks_per_cylinder} *
                                                    disk.sectors_per_track * disk.bytes_per_sector;
                     return cylinder == 0 ? 0 : disk.size / cylinder;
                 }},
         ""},
    };
    return table;
}

const Table<Disk>& DetectionTable() {
    using Int13 = DISK_INT13_INFO;
    using ExInt13 = DISK_EX_INT13_INFO;
    static const Table<Disk> table = {
        {"type", &Disk::detection_type, Named(kDetectionTypes), Required{}, ""},
        {"driveSelect", In<&Disk::int13, &Int13::DriveSelect>{}, Number16(), ""},
        {"maxCylinders", In<&Disk::int13, &Int13::MaxCylinders>{}, Number(), ""},
        {"sectorsPerTrack", In<&Disk::int13, &Int13::SectorsPerTrack>{}, Number16(), ""},
        {"maxHeads", In<&Disk::int13, &Int13::MaxHeads>{}, Number16(), ""},
        {"numberDrives", In<&Disk::int13, &Int13::NumberDrives>{}, Number16(), ""},
        {"exBufferSize", In<&Disk::ex_int13, &ExInt13::ExBufferSize>{}, Number16(), ""},
        {"exFlags", In<&Disk::ex_int13, &ExInt13::ExFlags>{}, Number16(), ""},
        {"exCylinders", In<&Disk::ex_int13, &ExInt13::ExCylinders>{}, Number(), ""},
        {"exHeads", In<&Disk::ex_int13, &ExInt13::ExHeads>{}, Number(), ""},
        {"exSectorsPerTrack", In<&Disk::ex_int13, &ExInt13::ExSectorsPerTrack>{}, Number(), ""},
        {"exSectorsPerDrive", In<&Disk::ex_int13, &ExInt13::ExSectorsPerDrive>{}, LongNumber(), ""},
        {"exSectorSize", In<&Disk::ex_int13, &ExInt13::ExSectorSize>{}, Number16(), ""},
        {"exReserved", In<&Disk::ex_int13, &ExInt13::ExReserved>{}, Number16(), ""},
    };
    return table;
}

}  // namespace machine::rows
