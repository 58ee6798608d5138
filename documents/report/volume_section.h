#pragma once

#include "documents/report/machine_parts.h"
#include "documents/report/verdicts.h"

#include <string>
#include <vector>

namespace documents {

// What the volume is to the machine: "Windows", "starts the machine", "dynamic".
std::vector<std::string> MarksOf(const Volume& volume);

// "Data, NTFS": the label, unless it is the volume's title, and the file system.
std::string LabelOf(const Volume& volume);

// Appends the rows of the volumes. `verdicts` may be null.
void AppendVolumes(std::string& page, const Machine& machine, const MachineParts& parts,
                   const Verdicts* verdicts);

}  // namespace documents
