#pragma once

#include "machine/description.h"

#include <cstring>
#include <vector>

namespace machine {

// The structures that the disk controls hand out, byte for byte.
Bytes DriveGeometryBytes(const Disk& disk);
Bytes DriveGeometryExBytes(const Disk& disk);
Bytes DriveLayoutBytes(const Disk& disk);
Bytes DriveLayoutExBytes(const Disk& disk);
Bytes PartitionBytes(const Partition& partition);
Bytes PartitionExBytes(const Partition& partition);

// The whole disk, as the partition controls describe an open physical drive.
Partition WholeDisk(const Disk& disk);

// The entry of a layout that a caller hands in.
Partition PartitionFrom(const PARTITION_INFORMATION_EX& information);

// The system's enumerations travel as plain numbers, which need not be ones that the enumeration knows.
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
