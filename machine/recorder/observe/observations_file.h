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

// One question or answer as one line without its end, to be passed between processes.

std::string QuestionLine(const Question& question);
std::string AnswerLine(const Answer& answer);
// Both throw machine::DescriptionError.
Question ParseQuestion(const std::string& line);
Answer ParseAnswer(const std::string& line);

}  // namespace recorder
