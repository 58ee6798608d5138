#include "tools/orvane/options.h"

#include "documents/commands/command_line.h"
#include "machine/description/text.h"
#include "tools/orvane/capture_command.h"
#include "tools/orvane/help_texts.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>

namespace host {

namespace {

// Receives the string arguments. The parser supports only 8-bit strings; these are UTF-8.
struct Texts {
    std::vector<std::string> volumes;
    std::string machine;
    std::string output;
    std::string log;
    std::string kind;
    std::string observations;
    std::string map;
};

const std::map<std::string, DumpKind> kDumpKinds = {
    {"wmi", DumpKind::kWmi},
    {"disks", DumpKind::kDisks},
    {"volumes", DumpKind::kVolumes},
    {"firmware", DumpKind::kFirmware},
};

std::optional<std::filesystem::path> PathOf(const std::string& utf8) {
    if (utf8.empty()) {
        return std::nullopt;
    }
    return std::filesystem::path(machine::Widen(utf8));
}

std::vector<std::wstring> Wide(const std::vector<std::string>& texts) {
    std::vector<std::wstring> wide;
    std::transform(texts.begin(), texts.end(), std::back_inserter(wide), machine::Widen);
    return wide;
}

CLI::Validator NotEmpty() {
    return {[](const std::string& text) { return text.empty() ? "must not be empty" : std::string(); }, "",
            "text"};
}

void AddPath(CLI::App& app, const char* name, std::string& text, const char* description) {
    app.add_option(name, text, description)->type_name("FILE")->check(NotEmpty());
}

void AddVolumes(CLI::App& app, Texts& texts, const char* description) {
    app.add_option("--volume", texts.volumes, description)
        ->type_name("GUID")
        ->allow_extra_args(false)
        ->check(NotEmpty());
}

void AddMachineOptions(CLI::App& app, MachineOptions& options, Texts& texts) {
    AddPath(app, "--machine", texts.machine, "Describe the machine of this description (JSON) or folder");
    AddPath(app, "--log", texts.log, "Write the library's whole log here, as UTF-8");
    app.add_flag("--verbose", options.verbose, "Show the log's messages of all levels, not errors alone");
}

void AddForce(CLI::App& app, bool& force) {
    app.add_flag("--force", force, "Replace an existing file");
}

CLI::App& AddCommand(CLI::App& app, const char* name, const HelpText& help) {
    CLI::App* const command = app.add_subcommand(name, help.description);
    command->footer(help.footer);
    return *command;
}

void AddCapture(CLI::App& app, CaptureOptions& options, Texts& texts) {
    CLI::App& capture = AddCommand(app, "capture", kCaptureHelp);
    capture
        .add_option("--format", options.format,
                    "Format of the document: 1, 2 or 3; the library takes any other number for 2")
        ->type_name("N")
        ->capture_default_str();
    AddVolumes(capture, texts, "GUID path of a volume that is to be backed up; may be given several times");
    AddPath(capture, "--output", texts.output, "Write the document here instead of standard output");
    AddForce(capture, options.force);
    capture.add_flag("--raw", options.raw,
                     "Write the library's bytes untouched, in the system's ANSI code page");
    AddMachineOptions(capture, options, texts);
}

void AddDump(CLI::App& app, DumpOptions& options, Texts& texts) {
    CLI::App& dump = AddCommand(app, "dump", kDumpHelp);
    dump.add_option("KIND", texts.kind, "What is dumped")->required()->check(CLI::IsMember(&kDumpKinds));
    AddPath(dump, "--output", texts.output, "Write the lines here instead of standard output");
    AddForce(dump, options.force);
    AddMachineOptions(dump, options, texts);
}

void AddCheck(CLI::App& app, CheckOptions& options, Texts& texts) {
    CLI::App& check = AddCommand(app, "check", kCheckHelp);
    AddVolumes(check, texts,
               "GUID path of a volume that has to be fit for backup; may be given several times");
    check.add_flag("--json", options.json, "Write JSON for programs instead of the table");
    AddMachineOptions(check, options, texts);
}

void AddRecord(CLI::App& app, RecordOptions& options, Texts& texts) {
    CLI::App& record = AddCommand(app, "record", kRecordHelp);
    record.add_option("--output", texts.output, "Write the description here")
        ->type_name("FILE")
        ->required()
        ->check(NotEmpty());
    AddPath(record, "--observations", texts.observations, "Write all answers of the system here");
    CLI::Option* const redact =
        record.add_flag("--redact", options.redact, "Replace what tells about people and organisations");
    AddPath(record, "--map", texts.map, "Write here what was replaced by what, readable by you alone");
    record.get_option("--map")->needs(redact);
    record.add_flag("!--no-proof", options.proof, "Do not run the library to compare what it makes of both");
    record.add_flag("--force", options.force, "Replace existing files");
    AddPath(record, "--machine", texts.machine, "Record the machine of this description (JSON) or folder");
}

void AddProve(CLI::App& app, Texts& texts) {
    CLI::App& prove = AddCommand(app, "prove", kProveHelp);
    prove.add_option("FILE", texts.observations, "An observations file of orvane record")
        ->required()
        ->check(NotEmpty());
}

// Not for users: the help does not list it.
void AddAnswer(CLI::App& app, Texts& texts) {
    CLI::App* const answer = app.add_subcommand("answer", "Answers the questions of a recording");
    answer->group("");
    AddPath(*answer, "--machine", texts.machine, "Answer for the machine of this description");
}

void TakeMachineTexts(MachineOptions& options, const Texts& texts) {
    options.machine = PathOf(texts.machine);
    options.log = PathOf(texts.log);
}

// The capture of `diff --live`, in the format of the document that it is compared with.
documents::CaptureNow AddLiveCapture(CLI::App& diff, CLI::Option& live) {
    const auto options = std::make_shared<CaptureOptions>();
    const auto texts = std::make_shared<Texts>();
    AddMachineOptions(diff, *options, *texts);
    for (const char* const name : {"--machine", "--log", "--verbose"}) {
        diff.get_option(name)->needs(&live);
    }
    return [options, texts](documents::Format format, const documents::Terminal& terminal) {
        TakeMachineTexts(*options, *texts);
        options->format = static_cast<std::uint32_t>(format);
        return CaptureDocument(*options, terminal.errors);
    };
}

Message Explain(const CLI::App& app, const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream problem;
    const int code = app.exit(error, out, problem);
    return code == 0 ? Message{kExitDone, out.str()} : Message{kExitBadUsage, "orvane: " + problem.str()};
}

// None if the arguments are valid.
std::optional<Message> Parse(CLI::App& app, const std::vector<std::wstring>& arguments) {
    // The parser expects the arguments in reverse order.
    std::vector<std::string> reversed;
    std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed),
                   [](const std::wstring& argument) { return machine::Narrow(argument); });
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::ParseError& error) {
        return Explain(app, error);
    }
    return std::nullopt;
}

void TakeRecordTexts(RecordOptions& record, const Texts& texts) {
    record.machine = PathOf(texts.machine);
    record.output = *PathOf(texts.output);
    record.observations = PathOf(texts.observations);
    record.map = PathOf(texts.map);
}

}  // namespace

Command ParseArguments(const std::vector<std::wstring>& arguments) {
    CLI::App app(kProgramHelp.description, "orvane");
    app.footer(kProgramHelp.footer);
    // Otherwise a path that begins with a slash would be an option.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    CaptureOptions capture;
    DumpOptions dump;
    CheckOptions check;
    RecordOptions record;
    Texts texts;
    AddCapture(app, capture, texts);
    AddDump(app, dump, texts);
    AddCheck(app, check, texts);
    AddRecord(app, record, texts);
    AddProve(app, texts);
    AddAnswer(app, texts);
    const documents::CommandLine document_commands(app, AddLiveCapture);
    app.add_subcommand("version", "Shows the versions of the library and of its interface");

    if (auto message = Parse(app, arguments)) {
        return *std::move(message);
    }
    if (app.got_subcommand("capture")) {
        TakeMachineTexts(capture, texts);
        capture.volumes = Wide(texts.volumes);
        capture.output = PathOf(texts.output);
        return capture;
    }
    if (app.got_subcommand("dump")) {
        TakeMachineTexts(dump, texts);
        dump.kind = kDumpKinds.at(texts.kind);
        dump.output = PathOf(texts.output);
        return dump;
    }
    if (app.got_subcommand("check")) {
        TakeMachineTexts(check, texts);
        check.volumes = Wide(texts.volumes);
        return check;
    }
    if (app.got_subcommand("record")) {
        TakeRecordTexts(record, texts);
        return record;
    }
    if (app.got_subcommand("prove")) {
        return ProveOptions{*PathOf(texts.observations)};
    }
    if (app.got_subcommand("answer")) {
        return AnswerOptions{PathOf(texts.machine)};
    }
    if (const documents::Command* const command = document_commands.Given(); command != nullptr) {
        // Its parser ends with this function.
        return DocumentOptions{{nullptr, command->run}};
    }
    return VersionOptions{};
}

}  // namespace host
