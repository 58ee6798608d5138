#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace documents {

// The exit codes of all commands for documents. Of several documents the highest counts.
enum ExitCode : int {
    kDone = 0,
    kAnswer = 1,   // an answer: it differs, it has errors, it was refused
    kTrouble = 2,  // arguments, unreadable input, unwritable output
};

// Where a command reads and writes. The streams are binary; all texts are UTF-8.
struct Terminal {
    std::istream& in;
    std::ostream& out;
    std::ostream& errors;
    bool colour = false;               // whether `out` shows colours
    std::optional<std::size_t> width;  // of the terminal in characters; none: `out` is none
};

// A command of the command line. `run` returns the exit code, and throws std::exceptions for trouble with
// anything but a document.
struct Command {
    CLI::App* parser = nullptr;
    std::function<int(const Terminal& terminal)> run;
};

// Each adds its command with its arguments to the program's.
Command AddShow(CLI::App& program);
Command AddVerify(CLI::App& program);
Command AddReport(CLI::App& program);
Command AddPlan(CLI::App& program);

// Trouble that ends a command. what() is UTF-8.
class Trouble : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Writes "orvane: TEXT" to standard error, in one line, escaped.
void Complain(const Terminal& terminal, const std::string& text);

// Writes the whole text to standard output. Throws Trouble.
void Print(const Terminal& terminal, const std::string& text);

}  // namespace documents
