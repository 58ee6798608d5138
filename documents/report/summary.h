#pragma once

#include "documents/report/machine_parts.h"
#include "documents/report/page_data.h"

#include <string>

namespace documents {

// The machine's name, or what stands in its place.
std::string ComputerOf(const Machine& machine);

// "Windows 11 Pro, version 10.0.22631"; empty if the document says neither.
std::string WindowsOf(const Machine& machine);

// The machine at a glance. `document` is the name of the document.
PageData SummaryOf(const Machine& machine, const MachineParts& parts, const std::string& document);

// All system facts, a table for each section of the document.
PageData FactSectionsOf(const Machine& machine);

}  // namespace documents
