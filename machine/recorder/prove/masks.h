#pragma once

#include <string>

namespace recorder {

// The indented document with everything masked that differs from capture to capture:
// - the GUIDs that formats 1 and 2 make for the volumes of one document: "generated 1", "generated 2" and so
//   on, in the order in which they appear;
// - the address in the element GUID of a GPT disk in format 3: "address".
// A zero GUID or address is kept. So are all other texts, among them volume GUID paths and the GUIDs of disks
// and partitions. An empty element is written with an end tag, however the document wrote it.
std::string Masked(const std::string& document);

}  // namespace recorder
