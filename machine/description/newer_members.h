#pragma once

#include <cstddef>

// Where current systems have members that the compiler's headers lack, or have only for those systems.
namespace machine {

// DWORD DRIVE_LAYOUT_INFORMATION_EX::Mbr.CheckSum
inline constexpr std::size_t kMbrLayoutChecksum = 12;

// BOOLEAN PARTITION_INFORMATION_EX::IsServicePartition, of both styles
inline constexpr std::size_t kServicePartition = 29;

// GUID PARTITION_INFORMATION_EX::Mbr.PartitionId
inline constexpr std::size_t kMbrPartitionId = 40;

}  // namespace machine
