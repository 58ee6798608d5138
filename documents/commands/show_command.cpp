#include "documents/commands/command.h"
#include "documents/commands/help_texts.h"
#include "documents/commands/inputs.h"
#include "documents/commands/json_output.h"
#include "documents/show/show.h"
#include "documents/show/styled_line.h"
#include "documents/verify/verify.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace documents {

namespace {

struct ShowArguments {
    InputArguments inputs;
    bool json = false;
    bool lines = false;
    bool bytes = false;
};

int ShowJson(const ShowArguments& arguments, const Terminal& terminal) {
    DocumentObjects objects(terminal, arguments.lines);
    int code = kDone;
    for (const std::string& file : FilesOf(arguments.inputs, terminal)) {
        const int one = WithDocument(
            file, arguments.inputs.reading, terminal,
            [&](const Machine& machine) {
                nlohmann::ordered_json object = JsonOf(file, machine);
                object["findings"] = JsonOf(Verify(machine));
                objects.Add(object);
                return kDone;
            },
            [&](const Unreadable& bad) { objects.Add(JsonOf(file, bad.place, bad.reason)); });
        code = std::max(code, one);
    }
    objects.Finish();
    return code;
}

int ShowTrees(const ShowArguments& arguments, const Terminal& terminal) {
    const TreeStyle style{arguments.bytes, terminal.colour, terminal.width};
    const std::vector<std::string> files = FilesOf(arguments.inputs, terminal);
    int code = kDone;
    for (const std::string& file : files) {
        const auto show = [&](const Machine& machine) {
            std::string text;
            if (files.size() > 1) {
                text = (&file == &files.front() ? "" : "\n") +
                       StyledLine().Add(file + ":").Text(terminal.colour, terminal.width);
            }
            Print(terminal, text + TreeOf(machine, style));
            return kDone;
        };
        code = std::max(
            code, WithDocument(file, arguments.inputs.reading, terminal, show, [](const Unreadable&) {}));
    }
    return code;
}

}  // namespace

Command AddShow(CLI::App& program) {
    const auto arguments = std::make_shared<ShowArguments>();
    CLI::App* const parser = program.add_subcommand("show", kShowHelp.description);
    parser->footer(kShowHelp.footer);
    AddInputs(*parser, arguments->inputs);
    CLI::Option* const json =
        parser->add_flag("--json", arguments->json, "Write JSON for programs instead of the tree");
    parser->add_flag("--lines", arguments->lines, "With --json: one object a document, each in its line")
        ->needs(json);
    parser->add_flag("--bytes", arguments->bytes, "Show sizes in bytes")->excludes(json);
    return {parser, [arguments](const Terminal& terminal) {
                return arguments->json ? ShowJson(*arguments, terminal) : ShowTrees(*arguments, terminal);
            }};
}

}  // namespace documents
