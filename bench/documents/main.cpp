// Measures the commands for documents natively, on documents that `bench.exe --documents FOLDER` wrote.
// Prints rows as bench.exe does. Exit code: 0 if every goal is met, 1 if not, 2 if a measurement fails.

#include "bench/documents/own_process.h"
#include "bench/report.h"
#include "bench/timing.h"
#include "documents/diff/compare.h"
#include "documents/diff/output.h"
#include "documents/reader/reader.h"
#include "documents/report/report.h"
#include "documents/show/show.h"
#include "documents/verify/verify.h"
#include "documents/xml/parser.h"

#include <CLI/CLI.hpp>
#include <pugixml.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using documents::Machine;

constexpr std::size_t kTimes = 10;  // so many small documents are as much as the large one
constexpr double kSlack = 1.1;      // more than linear growth, as for captures

std::string Contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in || bytes.empty()) {
        throw std::runtime_error(file.string() + " cannot be read");
    }
    return bytes;
}

Machine Read(const std::string& document) {
    return documents::ReadDocument(document, {.code_page = {}});
}

// Takes nothing.
class NoEvents : public documents::XmlEvents {
public:
    void Open(std::string_view /*name*/) override {}
    void Close() override {}
    void Value(std::string_view /*name*/, std::string_view /*text*/) override {}
};

// Parsing as all commands do it: the checks, the parser, and a pass over the elements.
void Parse(const std::string& document) {
    NoEvents events;
    documents::ParseXml(document, events);
}

// The parser's library alone.
void ParseUnchecked(std::string document) {
    pugi::xml_document tree;
    if (!tree.load_buffer_inplace(document.data(), document.size())) {
        throw std::runtime_error("the parser refuses the document");
    }
}

void ParseOften(const std::string& document) {
    for (std::size_t i = 0; i < kTimes; ++i) {
        Parse(document);
    }
}

// What a command does with the bytes of a document, up to the text that it would write. Returns 0 only if it
// did nothing.
struct Command {
    const char* name;
    double goal;  // in times of parsing
    std::function<std::size_t(const std::string& document)> run;
};

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"show", 2,
         [](const std::string& document) {
             return documents::TreeOf(Read(document), {.bytes = false, .colour = false, .width = {}}).size();
         }},
        {"verify", 2,
         [](const std::string& document) {
             const Machine machine = Read(document);
             documents::Verify(machine);  // finds nothing
             return machine.volumes.size();
         }},
        {"diff", 4,
         [](const std::string& document) {
             const Machine before = Read(document);
             Machine after = Read(document);
             for (documents::Volume& volume : after.volumes) {
                 volume.label = "changed";
             }
             std::size_t length = 0;
             for (const documents::diff::Change& change : documents::diff::Compare(before, after, {})) {
                 length += documents::diff::SentenceOf(change).size();
             }
             return length;
         }},
        {"report", 4,
         [](const std::string& document) {
             const Machine machine = Read(document);
             return documents::ReportPage({machine, "file", documents::Verify(machine), nullptr}).size();
         }},
    };
    return commands;
}

void Measure(const std::filesystem::path& folder, const std::string& format, std::size_t rounds,
             bench::Report& report) {
    const std::string small = Contents(folder / ("1000-format" + format + ".xml"));
    const std::string large = Contents(folder / ("10000-format" + format + ".xml"));
    const auto ratio = [&](const bench::Work& measured, const bench::Work& reference) {
        return bench::RatioOf(measured, reference, rounds, bench::SecondsInOwnProcess);
    };
    report.Figure("pugixml alone, format " + format,
                  ratio([&] { ParseUnchecked(large); }, [&] { Parse(large); }), "times of parsing");
    for (const Command& command : Commands()) {
        const auto run = [&](const std::string& document, std::size_t count) {
            return [&, count] {
                for (std::size_t i = 0; i < count; ++i) {
                    if (command.run(document) == 0) {
                        throw std::runtime_error(std::string(command.name) + " made nothing");
                    }
                }
            };
        };
        const std::string row = std::string(command.name) + ", format " + format;
        const double many = ratio(run(large, 1), [&] { Parse(large); });
        report.Ratio(row + ", in times of parsing", many, command.goal);
        // In times of parsing too, because a large document no longer fits the processor's caches.
        const double few = ratio(run(small, kTimes), [&] { ParseOften(small); });
        report.Ratio(row + ", 1,000 to 10,000 volumes", many / few, kSlack);
    }
}

}  // namespace

int main(int count, char** arguments) {
    std::string folder;
    std::size_t effort = 1;
    CLI::App app("Benchmarks of the commands for documents.", "bench_documents");
    app.add_option("FOLDER", folder, "with the documents that bench.exe --documents wrote")->required();
    app.add_option("--effort", effort, "How many times as often each figure is measured")
        ->check(CLI::PositiveNumber);
    CLI11_PARSE(app, count, arguments);
    try {
        bench::Report report;
        report.Section("The commands for documents, natively, on the document of 10,000 volumes");
        for (const char* format : {"2", "3"}) {
            Measure(folder, format, 10 * effort, report);
        }
        std::printf("\n%s\n", report.met()
                                  ? "All goals are met."
                                  : (std::to_string(report.missed()) + " goals are missed.").c_str());
        return report.met() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_documents: %s\n", error.what());
        return 2;
    }
}
