#pragma once

#include "machine/description/description.h"
#include "machine/recorder/observe/observations.h"

#include <cstdint>
#include <string>
#include <vector>

// The parts of a description, in the order in which they build on each other.
namespace recorder {

// The largest number of bytes that a description can say.
inline constexpr std::uint64_t kMostBytes = INT64_MAX;

// The error of opening a path for reading, if it can be opened with no access; 0 otherwise. An opening that
// does not come back has the error of a call that blocks.
std::uint32_t ReadError(const Observations& observations, const std::wstring& path);

// The disks with their tables, in the order in which WMI lists them; then those that WMI does not list.
std::vector<machine::Disk> DescribedDisks(const Observations& observations);

// Fills Description::volumes. The disks must be there.
void DescribeVolumes(const Observations& observations, machine::Description& description);

// Fills DOS devices and directories that do not follow from disks and volumes.
void DescribeNames(const Observations& observations, machine::Description& description);

void DescribeRegistry(const Observations& observations, machine::Description& description);
void DescribeFirmware(const Observations& observations, machine::Description& description);

// Whether the XML component is there.
void DescribeXmlComponent(const Observations& observations, machine::Description& description);

// The functions that the system lacks.
void DescribeMissing(const Observations& observations, machine::Description& description);

// The classes of WMI, and which disks they list.
void DescribeWmi(const Observations& observations, machine::Description& description);

// The drive on which Windows is installed, by WMI.
std::wstring CurrentDrive(const Observations& observations);

// Adds to the objects and to the machine the errors of calls that fail on the observed machine but not on the
// described one. Returns whether there were any.
bool DescribeErrors(const Observations& observations, machine::Description& description);

}  // namespace recorder
