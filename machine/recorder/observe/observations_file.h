#pragma once

#include "machine/recorder/observe/observations.h"

#include <filesystem>
#include <string>

namespace recorder {

// The text of an observations file, in UTF-8, one observation a line. docs/machine-format.md describes it.
std::string ObservationsText(const Observations& observations);

// Reads such a text. `name` is the file name used in errors. Throws machine::DescriptionError.
Observations ParseObservations(const std::string& text, const std::string& name);

// Reads an observations file. Throws machine::DescriptionError.
Observations LoadObservations(const std::filesystem::path& file);

// One observation as a line of that file without its end; a question without an answer can be passed too.
std::string ObservationLine(const Observation& observation);
Observation ParseObservation(const std::string& line);  // throws machine::DescriptionError

}  // namespace recorder
