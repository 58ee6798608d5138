// orvane for the systems that keep documents: its commands for documents alone.

#include "documents/commands/command_line.h"
#include "documents/commands/help_texts.h"

#include <CLI/CLI.hpp>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace {

std::optional<std::size_t> TerminalWidth() {
    winsize size{};
    if (isatty(STDOUT_FILENO) == 0 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return std::nullopt;
    }
    return size.ws_col;
}

// The NO_COLOR convention: https://no-color.org
bool ShowsColours() {
    return isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
}

}  // namespace

int main(int count, char** arguments) {
    std::ios::sync_with_stdio(false);
    CLI::App program(documents::kProgramHelp.description, "orvane");
    program.footer(documents::kProgramHelp.footer);
    program.require_subcommand(1);
    const documents::CommandLine commands(program);
    try {
        program.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        std::ostringstream problem;
        const int code = program.exit(error, std::cout, problem);
        if (code != 0) {
            std::cerr << "orvane: " << problem.str();
        }
        return code == 0 ? documents::kDone : documents::kTrouble;
    }
    return documents::RunCommand(*commands.Given(),
                                 {std::cin, std::cout, std::cerr, ShowsColours(), TerminalWidth()});
}
