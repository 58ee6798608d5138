#include "tools/orvane/options.h"

#include "machine/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace host {

namespace {

constexpr const char* kDescription =
    "orvane - describes this machine to a backup agent, as Orvane.dll beside this program sees it.\n";

constexpr const char* kFooter =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the capture failed; standard error says why\n"
    "  2  the arguments or the machine description cannot be used\n"
    "\n"
    "orvane capture --help lists the arguments of a capture.";

constexpr const char* kCaptureDescription =
    "Captures the environment document: disks, partitions, volumes and system information as XML.\n"
    "On Windows it describes the machine it runs on, or the described machine of --machine. Under Wine, "
    "which\n"
    "has no disks of its own to show, a described workstation stands in where --machine is not given.";

constexpr const char* kCaptureFooter =
    "The document is written as UTF-8, indented; errors go to standard error. A volume given with --volume "
    "that\n"
    "cannot be backed up fails the capture, and the reasons are shown. The size query that comes before "
    "every\n"
    "capture makes --log and --verbose tell everything twice.\n"
    "\n"
    "Examples:\n"
    "  orvane capture --output environment.xml\n"
    "  orvane capture --volume \"\\\\?\\Volume{0b0a2f5e-0000-0000-0000-100000000000}\\\"\n"
    "  orvane capture --machine examples/machines/bios-laptop.json --verbose";

// Where the parser puts its results: it knows 8-bit texts only.
struct Texts {
    std::vector<std::string> volumes;
    std::string machine;
    std::string output;
    std::string log;
};

std::optional<std::filesystem::path> PathOf(const std::string& utf8) {
    if (utf8.empty()) {
        return std::nullopt;
    }
    return std::filesystem::path(machine::Widen(utf8));
}

CLI::Validator NotEmpty() {
    return {[](const std::string& text) { return text.empty() ? "must not be empty" : std::string(); }, "",
            "text"};
}

void AddPath(CLI::App& app, const char* name, std::string& text, const char* description) {
    app.add_option(name, text, description)->type_name("FILE")->check(NotEmpty());
}

CLI::App* AddCapture(CLI::App& app, CaptureOptions& options, Texts& texts) {
    CLI::App* const capture = app.add_subcommand("capture", kCaptureDescription);
    capture->footer(kCaptureFooter);
    capture
        ->add_option("--format", options.format,
                     "Format of the document: 1, 2 or 3; the library takes any other number for 2")
        ->type_name("N")
        ->capture_default_str();
    capture
        ->add_option("--volume", texts.volumes,
                     "GUID path of a volume that is to be backed up; may be given several times")
        ->type_name("GUID")
        ->allow_extra_args(false)
        ->check(NotEmpty());
    AddPath(*capture, "--machine", texts.machine, "Describe the machine of this description (JSON)");
    AddPath(*capture, "--output", texts.output, "Write the document here instead of standard output");
    capture->add_flag("--raw", options.raw,
                      "Write the library's bytes untouched, in the system's ANSI code page");
    AddPath(*capture, "--log", texts.log, "Write the library's whole log here, as UTF-8");
    capture->add_flag("--verbose", options.verbose,
                      "Show the log's messages of all levels, not errors alone");
    return capture;
}

Message Explain(const CLI::App& app, const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream problem;
    const int code = app.exit(error, out, problem);
    return code == 0 ? Message{kExitDone, out.str()} : Message{kExitBadUsage, "orvane: " + problem.str()};
}

}  // namespace

Command ParseArguments(const std::vector<std::wstring>& arguments) {
    CLI::App app(kDescription, "orvane");
    app.footer(kFooter);
    // A path that begins with a slash is a path.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    CLI::App* const version =
        app.add_subcommand("version", "Shows the versions of the library and of its interface");
    CaptureOptions options;
    Texts texts;
    AddCapture(app, options, texts);

    // The parser takes them from the back.
    std::vector<std::string> reversed;
    std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed),
                   [](const std::wstring& argument) { return machine::Narrow(argument); });
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::ParseError& error) {
        return Explain(app, error);
    }
    if (version->parsed()) {
        return VersionOptions{};
    }
    std::transform(texts.volumes.begin(), texts.volumes.end(), std::back_inserter(options.volumes),
                   machine::Widen);
    options.machine = PathOf(texts.machine);
    options.output = PathOf(texts.output);
    options.log = PathOf(texts.log);
    return options;
}

}  // namespace host
