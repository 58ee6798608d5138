#include "tools/orvane/program.h"

#include "documents/commands/command_line.h"
#include "documents/text/utf8.h"
#include "machine/description/description.h"
#include "tools/orvane/asking_process.h"
#include "tools/orvane/capture_command.h"
#include "tools/orvane/check_command.h"
#include "tools/orvane/dump_command.h"
#include "tools/orvane/options.h"
#include "tools/orvane/orvane_library.h"
#include "tools/orvane/record_command.h"
#include "tools/orvane/under_wine.h"

#include <exception>

namespace host {

namespace {

using documents::Terminal;

int Execute(const Message& message, const Terminal& terminal) {
    (message.exit_code == kExitDone ? terminal.out : terminal.errors) << message.text;
    return message.exit_code;
}

int Execute(const VersionOptions& /*options*/, const Terminal& terminal) {
    const OrvaneLibrary library(LibraryPath());
    terminal.out << "Orvane.dll " << library.FileVersion() << ", interface version "
                 << library.GetOrvaneVersion() << '\n';
    return kExitDone;
}

// After a failure under Wine without --machine, prints a hint that Wine has no disks. Returns `code`.
int Explained(int code, const MachineOptions& options, std::ostream& errors) {
    if (code == kExitFailed && !options.machine && RunsUnderWine()) {
        errors
            << "orvane: Wine has no disks of its own to describe; --machine FILE describes another machine\n";
    }
    return code;
}

int Execute(const CaptureOptions& options, const Terminal& terminal) {
    return Explained(Capture(options, terminal.out, terminal.errors), options, terminal.errors);
}

int Execute(const DumpOptions& options, const Terminal& terminal) {
    return Explained(Dump(options, terminal.out, terminal.errors), options, terminal.errors);
}

int Execute(const CheckOptions& options, const Terminal& terminal) {
    return Explained(Check(options, terminal.out, terminal.errors, terminal.colour), options,
                     terminal.errors);
}

int Execute(const RecordOptions& options, const Terminal& terminal) {
    return Record(options, terminal.out, terminal.errors);
}

int Execute(const ProveOptions& options, const Terminal& terminal) {
    return Prove(options, terminal.out, terminal.errors);
}

int Execute(const AnswerOptions& options, const Terminal& /*terminal*/) {
    return AnswerQuestions(options.machine);
}

int Execute(const DocumentOptions& options, const Terminal& terminal) {
    return documents::RunCommand(options.command, terminal);
}

}  // namespace

int Run(const std::vector<std::wstring>& arguments, const documents::Terminal& terminal) {
    std::ostream& errors = terminal.errors;
    try {
        return std::visit([&](const auto& command) { return Execute(command, terminal); },
                          ParseArguments(arguments));
    } catch (const machine::DescriptionError& error) {
        // It may name a key of the file.
        errors << "orvane: " << documents::Escaped(error.what()) << '\n';
        return kExitBadUsage;
    } catch (const UsageError& error) {
        errors << "orvane: " << error.what() << '\n';
        return kExitBadUsage;
    } catch (const std::exception& error) {
        errors << "orvane: " << error.what() << '\n';
        return kExitFailed;
    }
}

}  // namespace host
