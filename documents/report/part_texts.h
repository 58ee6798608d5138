#pragma once

#include "documents/report/disk_parts.h"

#include <string>

namespace documents {

// What the page calls things. UTF-8, not yet escaped.

// "5C82E1A3": signatures and serial numbers as Windows writes them.
std::string HexNumber(std::uint32_t number);

// "C:", else its first folder, its label or its device.
std::string TitleOf(const Volume& volume);

// The volume's title, else what is known of the part: "EFI system", "Unallocated".
std::string TitleOf(const DiskPart& part);

// One line: "Partition 2, logical, NTFS or exFAT (07), extent 1 of 2".
std::string DetailsOf(const DiskPart& part);

}  // namespace documents
