#pragma once

#include "documents/diff/change.h"
#include "documents/diff/disk_identity.h"
#include "documents/diff/fields.h"

#include <optional>
#include <vector>

namespace documents::diff {

// Whether it is a dynamic disk, by what the document says or by the types of its partitions.
std::optional<bool> IsDynamic(const Disk& disk);

// Whether both documents say which table the disk has. In the flat formats a disk without one may also be a
// disk whose style is not known, which another format can describe.
bool TablesAreKnown(const DiskPair& pair, const CompareRules& rules);

std::vector<Change> CompareDisk(const DiskPair& pair, const CompareRules& rules);
// Of a disk that was added, removed or replaced; `before` or `after` may be null.
Change WholeDisk(Kind kind, const Disk* before, const Disk* after);

}  // namespace documents::diff
