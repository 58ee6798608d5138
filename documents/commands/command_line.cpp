#include "documents/commands/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace documents {

CommandLine::CommandLine(CLI::App& program, const AddCapture& capture) {
    program.set_version_flag("--version", "orvane " ORVANE_VERSION, "Shows the version of this program");
    for (const auto& add : {AddShow, AddVerify, AddReport, AddPlan}) {
        commands_.push_back(add(program));
    }
    commands_.push_back(AddDiff(program, capture));
}

const Command* CommandLine::Given() const {
    const auto found = std::find_if(commands_.begin(), commands_.end(),
                                    [](const Command& command) { return command.parser->parsed(); });
    return found == commands_.end() ? nullptr : &*found;
}

int RunCommand(const Command& command, const Terminal& terminal) {
    try {
        return command.run(terminal);
    } catch (const std::exception& error) {
        Complain(terminal, error.what());
        return kTrouble;
    }
}

}  // namespace documents
