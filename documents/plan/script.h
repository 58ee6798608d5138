#pragma once

#include "documents/model/machine.h"
#include "documents/plan/table.h"
#include "documents/plan/target.h"

#include <string>

namespace documents {

// "disk0.sfdisk"
std::string ScriptName(const Disk& disk);

// The script that makes the table, in the form of `sfdisk --dump`. It begins with comments that tell which
// disk it is for.
std::string ScriptOf(const Machine& machine, const Disk& disk, const Table& table, const Target& target);

// "{...}", "0x7A3C91E8" or "unknown"
std::string DiskIdText(const Disk& disk);

}  // namespace documents
