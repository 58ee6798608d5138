#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cases {

// A file of the folder expected/, with its text as the shipped library makes it.
struct Output {
    std::string file;
    std::string text;
};

// What is made of a described machine: "format1" to "format3", the four dumps by their kind, and "check".
const std::vector<std::string>& Subjects();

// The names of the files of which one holds that subject: formatN has a document or the reasons of the
// refusal.
std::vector<std::string> FilesOf(const std::string& subject);

// Loads the library, and lets it describe the machine of the folder, with the volumes of selected.txt
// selected:
// - formatN.xml: the document, indented and masked; or formatN.refused.txt: the warnings and errors of the
// log;
// - KIND.txt: the messages of the dump, without trace lines;
// - check.json: as `orvane check --json` prints it.
// A message of the log is one line: its level and its text, with \n for a line feed and \x01 for another
// control character. Throws std::runtime_error if the library breaks its contract, for example leaves a
// handle open, and other std::exceptions.
Output MakeOutput(const std::filesystem::path& folder, const std::string& subject);

}  // namespace cases
