#pragma once

#include "documents/model/machine.h"

// What a document of another format would say of a machine: what it leaves out was neither added nor removed.
namespace documents::diff {

bool SaysDisk(Format other, Format own, const Disk& disk);

// `machine` has the volume.
bool SaysVolume(Format other, const Machine& machine, const Volume& volume);

}  // namespace documents::diff
