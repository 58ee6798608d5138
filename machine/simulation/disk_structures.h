#pragma once

#include "machine/description/description.h"

#include <cstring>
#include <vector>

namespace machine {

// The output structures of the disk controls, as bytes.
Bytes DriveGeometryBytes(const Disk& disk);
Bytes DriveGeometryExBytes(const Disk& disk);
Bytes DriveLayoutBytes(const Disk& disk);
Bytes DriveLayoutExBytes(const Disk& disk);
Bytes PartitionBytes(const Partition& partition);
Bytes PartitionExBytes(const Partition& partition);

// The entry for the whole disk, which the partition controls return for an open physical drive.
Partition WholeDisk(const Disk& disk);

// Converts an entry of a layout that the caller passed in.
Partition PartitionFrom(const PARTITION_INFORMATION_EX& information);

// Copies an enumeration as a plain number, which need not be a valid enumerator.
template <class Enum>
void StoreNumber(Enum& place, std::uint32_t number) {
    static_assert(sizeof(Enum) == sizeof(number));
    std::memcpy(&place, &number, sizeof(number));
}

template <class Enum>
std::uint32_t NumberIn(const Enum& place) {
    std::uint32_t number = 0;
    static_assert(sizeof(Enum) == sizeof(number));
    std::memcpy(&number, &place, sizeof(number));
    return number;
}

template <class T>
Bytes BytesOf(const T& value) {
    Bytes bytes(sizeof(T));
    std::memcpy(bytes.data(), &value, sizeof(T));
    return bytes;
}

}  // namespace machine
