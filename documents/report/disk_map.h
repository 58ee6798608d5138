#pragma once

#include "documents/report/disk_parts.h"
#include "documents/report/page_data.h"
#include "documents/report/page_template.h"

#include <string>
#include <vector>

namespace documents {

// The class of a part, and of a volume in its table, which gives it its colour.
std::string LookOf(const Volume& volume);
std::string LookOf(const DiskPart& part);

// The maps of a disk: one for paper and screens, one for telephones. A map is not drawn if its parts do not
// fit. `piece` is made of kPieceTemplate.
PageData MapsOf(const std::vector<DiskPart>& parts, PageTemplate& piece);

}  // namespace documents
