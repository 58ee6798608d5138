#pragma once

#include "documents/diff/disk_identity.h"
#include "documents/diff/volume_identity.h"

#include <string>

// How changes name the objects: the id for programs, the subject for people.
namespace documents::diff {

std::string IdOf(const Disk& disk);
std::string IdOf(const Disk& disk, const Partition& partition);
std::string IdOf(const Machine& machine, const Volume& volume);

// "Disk 1", or "Disk 1 (now 0)".
std::string SubjectOf(const DiskPair& pair);
std::string SubjectOf(const Disk& disk);
// "Disk 1, partition at 501 MiB"; `disk` is the disk's subject.
std::string SubjectOf(const std::string& disk, const Partition& partition);
// "Volume C:\"
std::string SubjectOf(const VolumePair& pair);

}  // namespace documents::diff
