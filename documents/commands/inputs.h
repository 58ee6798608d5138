#pragma once

#include "documents/commands/command.h"
#include "documents/model/machine.h"
#include "documents/reader/reader.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace documents {

// The arguments of commands that read documents.
struct InputArguments {
    std::vector<std::string> files;  // "-": standard input
    std::string from;                // a file that lists more; empty: none
    ReadOptions reading;
};

// Adds DOC..., --from and --code-page.
void AddInputs(CLI::App& parser, InputArguments& arguments);
// Adds --code-page.
void AddCodePage(CLI::App& parser, ReadOptions& reading);

// The files of the arguments and of the list. Throws Trouble if there is none, or the list cannot be read.
std::vector<std::string> FilesOf(const InputArguments& arguments, const Terminal& terminal);

// The bytes of a file; "-" is standard input. Throws Trouble, also for a file over kLargestDocument.
std::string ReadFile(const std::string& file, const Terminal& terminal);

// Why a document cannot be read. `place` may be empty.
struct Unreadable {
    std::string file;
    std::string place;
    std::string reason;
};

// Reads the document and passes it to `take`, or says on standard error why it cannot be read and passes that
// to `refuse`. Returns what they return.
int WithDocument(const std::string& file, const ReadOptions& reading, const Terminal& terminal,
                 const std::function<int(const Machine& machine)>& take,
                 const std::function<void(const Unreadable& unreadable)>& refuse);

}  // namespace documents
