#include "documents/commands/command.h"
#include "documents/commands/help_texts.h"
#include "documents/commands/inputs.h"
#include "documents/commands/output_file.h"
#include "documents/report/report.h"
#include "documents/text/encoding.h"
#include "documents/text/read_error.h"
#include "documents/verify/verify.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <optional>

namespace documents {

namespace {

struct ReportArguments {
    std::string document;  // "-": standard input
    std::string output;
    std::string verdicts;  // empty: none
    bool force = false;
    ReadOptions reading;
};

// What the page calls the document: its name without the folder.
std::string NameOf(const std::string& document) {
    if (document == "-") {
        return "standard input";
    }
    const std::u8string name =
        std::filesystem::path(std::u8string(document.begin(), document.end())).filename().u8string();
    return {name.begin(), name.end()};
}

std::optional<Verdicts> VerdictsOf(const ReportArguments& arguments, const Terminal& terminal) {
    if (arguments.verdicts.empty()) {
        return std::nullopt;
    }
    try {
        return ReadVerdicts(DecodeMarkedText(ReadFile(arguments.verdicts, terminal)));
    } catch (const ReadError& error) {
        throw Trouble(arguments.verdicts + ": " + error.what());
    }
}

int WriteReport(const ReportArguments& arguments, const Terminal& terminal) {
    const std::optional<Verdicts> verdicts = VerdictsOf(arguments, terminal);
    const auto write = [&](const Machine& machine) {
        const ReportInput input{machine, NameOf(arguments.document), Verify(machine),
                                verdicts ? &*verdicts : nullptr};
        WriteWholeFile(arguments.output, ReportPage(input), arguments.force);
        return static_cast<int>(kDone);
    };
    return WithDocument(arguments.document, arguments.reading, terminal, write, [](const Unreadable&) {});
}

}  // namespace

Command AddReport(CLI::App& program) {
    const auto arguments = std::make_shared<ReportArguments>();
    CLI::App* const parser = program.add_subcommand("report", kReportHelp.description);
    parser->footer(kReportHelp.footer);
    parser->add_option("DOC", arguments->document, "The document; - is standard input")
        ->type_name("")
        ->required();
    parser->add_option("--output", arguments->output, "Write the page here")->type_name("FILE")->required();
    parser->add_flag("--force", arguments->force, "Replace the file of --output");
    parser->add_option("--verdicts", arguments->verdicts, "What orvane check --json wrote about the machine")
        ->type_name("FILE");
    AddCodePage(*parser, arguments->reading);
    return {parser, [arguments](const Terminal& terminal) { return WriteReport(*arguments, terminal); }};
}

}  // namespace documents
