#pragma once

#include "documents/model/disk.h"

#include <string>

namespace documents {

// What people call the type: "EFI system", "NTFS or exFAT (07)"; an unknown type as its number or GUID.
std::string TypeName(const Partition& partition);

}  // namespace documents
