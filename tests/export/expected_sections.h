#pragma once

// The parts of ExpectedDocument.

#include "machine/description/description.h"
#include "support/xml_tree.h"

#include <cstdint>
#include <string>
#include <vector>

std::vector<XmlTree> ExpectedSystemSections(const machine::Description& machine);
XmlTree ExpectedDisks(const machine::Description& machine);
XmlTree ExpectedVolumes(const machine::Description& machine);

// The numbers of the disks that WMI lists, in document order.
std::vector<std::uint32_t> ListedDisks(const machine::Description& machine);
// Null when there is none.
const machine::Disk* FindDisk(const machine::Description& machine, std::uint32_t index);
// True if the library treats the disk as MBR or GPT: it answers, and has such a table.
bool IsPartitioned(const machine::Disk& disk);
bool IsUnused(const machine::Partition& partition);
bool IsDynamic(const machine::Disk& disk);

// A property of the last instance of a WMI class (the operating system's, for example), as text in the ANSI
// code page.
std::string WmiTextOf(const machine::Description& machine, const wchar_t* class_name,
                      const wchar_t* property);

template <class Number>
XmlTree NumberLeaf(const char* name, Number value) {
    return Leaf(name, std::to_string(value));
}

inline XmlTree TruthLeaf(const char* name, bool value) {
    return Leaf(name, value ? "True" : "False");
}

// UTF-8; control characters that XML forbids, and characters that the ANSI code page lacks, are replaced.
std::string AnsiText(const std::wstring& text);
