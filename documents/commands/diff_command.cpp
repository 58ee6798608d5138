#include "documents/commands/diff_command.h"

#include "documents/commands/help_texts.h"
#include "documents/commands/inputs.h"
#include "documents/commands/json_output.h"
#include "documents/diff/compare.h"
#include "documents/diff/output.h"
#include "documents/text/read_error.h"
#include "documents/text/utf8.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <utility>

namespace documents {

namespace {

struct DiffArguments {
    InputArguments inputs;
    bool all = false;
    bool json = false;
    bool live = false;
};

int Tell(const DiffArguments& arguments, const Terminal& terminal, const std::vector<diff::Change>& changes,
         const diff::Compared& before, const diff::Compared& after) {
    if (arguments.json) {
        Print(terminal, JsonText(JsonOf(changes, before, after), true));
    } else {
        std::string text;
        for (const diff::Change& change : changes) {
            text += Escaped(SentenceOf(change)) + '\n';
        }
        Print(terminal, text);
    }
    return changes.empty() ? kDone : kAnswer;
}

int Compare(const DiffArguments& arguments, const Terminal& terminal, const diff::Compared& before,
            const Machine& old_machine, const diff::Compared& after, const Machine& new_machine) {
    return Tell(arguments, terminal, diff::Compare(old_machine, new_machine, {arguments.all}), before, after);
}

int CompareFiles(const DiffArguments& arguments, const Terminal& terminal,
                 const std::vector<std::string>& files) {
    const std::string& newer = files[1];
    // Says what is wrong with the second document too if the first cannot be read.
    const auto read_newer = [&](const std::function<int(const Machine& machine)>& take) {
        return WithDocument(newer, arguments.inputs.reading, terminal, take, [](const Unreadable&) {});
    };
    return WithDocument(
        files[0], arguments.inputs.reading, terminal,
        [&](const Machine& old_machine) {
            return read_newer([&](const Machine& new_machine) {
                return Compare(arguments, terminal, {files[0], old_machine.format}, old_machine,
                               {newer, new_machine.format}, new_machine);
            });
        },
        [&](const Unreadable&) { read_newer([](const Machine&) { return kDone; }); });
}

Machine ReadCaptured(const std::string& document) {
    try {
        return ReadDocument(document, {});
    } catch (const ReadError& error) {
        throw Trouble(std::string("the capture of this machine: ") + error.what());
    }
}

int CompareLive(const DiffArguments& arguments, const Terminal& terminal, const std::string& file,
                const CaptureNow& capture) {
    return WithDocument(
        file, arguments.inputs.reading, terminal,
        [&](const Machine& old_machine) {
            const std::optional<std::string> document = capture(old_machine.format, terminal);
            if (!document) {
                throw Trouble("the capture failed");
            }
            const Machine new_machine = ReadCaptured(*document);
            return Compare(arguments, terminal, {file, old_machine.format}, old_machine,
                           {std::nullopt, new_machine.format}, new_machine);
        },
        [](const Unreadable&) {});
}

int RunDiff(const DiffArguments& arguments, const Terminal& terminal, const CaptureNow& capture) {
    const std::vector<std::string> files = FilesOf(arguments.inputs, terminal);
    const std::size_t wanted = arguments.live ? 1 : 2;
    if (files.size() != wanted) {
        throw Trouble("diff compares " +
                      std::string(arguments.live ? "one document with this machine" : "two documents") +
                      ", but " + std::to_string(files.size()) + " " + (files.size() == 1 ? "is" : "are") +
                      " given");
    }
    if (!arguments.live && files[0] == "-" && files[1] == "-") {
        throw Trouble("only one of the documents can be standard input");
    }
    return arguments.live ? CompareLive(arguments, terminal, files[0], capture)
                          : CompareFiles(arguments, terminal, files);
}

}  // namespace

Command AddDiff(CLI::App& program, const AddCapture& capture) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App* const parser = program.add_subcommand("diff", kDiffHelp.description);
    parser->footer(kDiffHelp.footer);
    AddInputs(*parser, arguments->inputs);
    parser->add_flag("--all", arguments->all,
                     "Compare also what changes by itself: free space, device names and the like");
    parser->add_flag("--json", arguments->json, "Write JSON for programs instead of sentences");
    CaptureNow capture_now;
    if (capture) {
        CLI::Option* const live = parser->add_flag(
            "--live", arguments->live, "Compare with this machine as it is now, in the place of NEW");
        capture_now = capture(*parser, *live);
    }
    return {parser, [arguments, capture_now](const Terminal& terminal) {
                return RunDiff(*arguments, terminal, capture_now);
            }};
}

}  // namespace documents
