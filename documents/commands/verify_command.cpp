#include "documents/commands/command.h"
#include "documents/commands/help_texts.h"
#include "documents/commands/inputs.h"
#include "documents/commands/json_output.h"
#include "documents/show/show.h"
#include "documents/text/utf8.h"
#include "documents/verify/verify.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace documents {

namespace {

struct VerifyArguments {
    InputArguments inputs;
    bool json = false;
};

std::string CountOf(const std::vector<Finding>& findings, Severity severity) {
    const auto count = std::count_if(findings.begin(), findings.end(),
                                     [&](const Finding& finding) { return finding.severity == severity; });
    return std::to_string(count) + " " + std::string(NameOf(severity)) + (count == 1 ? "" : "s");
}

std::string TextOf(const std::string& file, const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += Escaped(file + ": " + std::string(finding.code) + " " +
                        std::string(NameOf(finding.severity)) + ": " + finding.place + ": " + finding.text) +
                '\n';
    }
    return text +
           Escaped(file + ": " + CountOf(findings, Severity::kError) + ", " +
                   CountOf(findings, Severity::kNote)) +
           '\n';
}

int RunVerify(const VerifyArguments& arguments, const Terminal& terminal) {
    DocumentObjects objects(terminal, false);
    int code = kDone;
    for (const std::string& file : FilesOf(arguments.inputs, terminal)) {
        const int one = WithDocument(
            file, arguments.inputs.reading, terminal,
            [&](const Machine& machine) {
                const std::vector<Finding> findings = Verify(machine);
                if (arguments.json) {
                    objects.Add({{"file", file}, {"findings", JsonOf(findings)}});
                } else {
                    Print(terminal, TextOf(file, findings));
                }
                return HasErrors(findings) ? kAnswer : kDone;
            },
            [&](const Unreadable& bad) { objects.Add(JsonOf(file, bad.place, bad.reason)); });
        code = std::max(code, one);
    }
    if (arguments.json) {
        objects.Finish();
    }
    return code;
}

}  // namespace

Command AddVerify(CLI::App& program) {
    const auto arguments = std::make_shared<VerifyArguments>();
    CLI::App* const parser = program.add_subcommand("verify", kVerifyHelp.description);
    parser->footer(kVerifyHelp.footer);
    AddInputs(*parser, arguments->inputs);
    parser->add_flag("--json", arguments->json, "Write JSON for programs instead of lines");
    return {parser, [arguments](const Terminal& terminal) { return RunVerify(*arguments, terminal); }};
}

}  // namespace documents
