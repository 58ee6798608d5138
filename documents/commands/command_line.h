#pragma once

#include "documents/commands/command.h"
#include "documents/commands/diff_command.h"

#include <vector>

namespace documents {

// The commands for documents of a program, and its version. Refers to the program's parser, which must
// outlive it. `capture` is that of AddDiff.
class CommandLine {
public:
    explicit CommandLine(CLI::App& program, const AddCapture& capture = {});

    // After the parsing: the command that was given; none if it is none of these.
    const Command* Given() const;

private:
    std::vector<Command> commands_;
};

// Runs the command. Trouble becomes a line on standard error and its exit code. Throws nothing.
int RunCommand(const Command& command, const Terminal& terminal);

}  // namespace documents
