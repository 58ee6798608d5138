#include "documents/commands/inputs.h"

#include "documents/text/code_pages.h"
#include "documents/text/encoding.h"
#include "documents/text/read_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <istream>
#include <new>
#include <sstream>
#include <type_traits>
#include <utility>

namespace documents {

namespace {

constexpr const char* kStandardInput = "-";

std::string CheckCodePage(const std::string& text) {
    const auto pages = CodePages();
    const bool known = std::any_of(pages.begin(), pages.end(),
                                   [&](const CodePage& page) { return std::to_string(page.number) == text; });
    if (known) {
        return {};
    }
    std::string list;
    for (const CodePage& page : pages) {
        list += (list.empty() ? "" : ", ") + std::to_string(page.number);
    }
    return text + " is none of the code pages " + list;
}

std::filesystem::path PathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

// Reads in pieces, because the size of standard input is not known; stops when it is too much.
std::string ReadAll(std::istream& in, const std::string& file, std::size_t expected) {
    constexpr std::size_t kPiece = std::size_t{1} << 20U;
    std::string bytes;
    // One byte more, so that the end is found without another piece.
    bytes.reserve(std::min(expected, kLargestDocument) + 1);
    while (in && bytes.size() <= kLargestDocument) {
        const std::size_t length = bytes.size();
        const std::size_t piece = std::max(std::min(kPiece, bytes.capacity() - length), std::size_t{1});
        bytes.resize(length + piece);
        in.read(bytes.data() + length, static_cast<std::streamsize>(piece));
        bytes.resize(length + static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad()) {
        throw Trouble(file + ": the file cannot be read");
    }
    if (bytes.size() > kLargestDocument) {
        throw Trouble(file + ": the file is larger than 256 MiB");
    }
    return bytes;
}

std::string ShownName(const std::string& file) {
    return file == kStandardInput ? "standard input" : file;
}

// Where the names of files are bytes, those of a list without a byte order mark need not be UTF-8.
std::string ListIn(const std::string& file, const Terminal& terminal) {
    constexpr bool kNamesAreBytes = std::is_same_v<std::filesystem::path::value_type, char>;
    std::string bytes = ReadFile(file, terminal);
    try {
        return kNamesAreBytes ? DecodeMarkedText(std::move(bytes))
                              : DecodeText(std::move(bytes), std::nullopt);
    } catch (const ReadError& error) {
        throw Trouble(ShownName(file) + ": " + error.what());
    }
}

}  // namespace

void AddCodePage(CLI::App& parser, ReadOptions& reading) {
    parser
        .add_option("--code-page", reading.code_page,
                    "The code page of documents without a byte order mark and an encoding declaration; "
                    "without it they "
                    "are UTF-8")
        ->type_name("N")
        ->check(CLI::Validator(CheckCodePage, "", "code page"));
}

void AddInputs(CLI::App& parser, InputArguments& arguments) {
    parser.add_option("DOC", arguments.files, "The documents; - is standard input")->type_name("");
    parser.add_option("--from", arguments.from, "Also the documents that this file lists, one a line")
        ->type_name("FILE");
    AddCodePage(parser, arguments.reading);
}

std::vector<std::string> FilesOf(const InputArguments& arguments, const Terminal& terminal) {
    std::vector<std::string> files = arguments.files;
    if (!arguments.from.empty()) {
        std::istringstream list(ListIn(arguments.from, terminal));
        std::string line;
        while (std::getline(list, line)) {
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            if (!line.empty()) {
                files.push_back(line);
            }
        }
    }
    if (files.empty()) {
        throw Trouble("no document is given; --help lists the arguments");
    }
    return files;
}

std::string ReadFile(const std::string& file, const Terminal& terminal) {
    if (file == kStandardInput) {
        return ReadAll(terminal.in, ShownName(file), 0);
    }
    std::error_code error;
    const std::filesystem::path path = PathOf(file);
    if (std::filesystem::is_directory(path, error)) {
        throw Trouble(file + ": is a folder");
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw Trouble(file + ": the file cannot be opened");
    }
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    return ReadAll(in, file, error ? 0 : static_cast<std::size_t>(size));
}

int WithDocument(const std::string& file, const ReadOptions& reading, const Terminal& terminal,
                 const std::function<int(const Machine& machine)>& take,
                 const std::function<void(const Unreadable& unreadable)>& refuse) {
    const std::string shown = ShownName(file);
    std::optional<Machine> machine;
    try {
        machine = ReadDocument(ReadFile(file, terminal), reading);
    } catch (const ReadError& error) {
        Complain(terminal, shown + ": " + error.what());
        refuse({file, error.place(), error.reason()});
        return kTrouble;
    } catch (const Trouble& trouble) {
        Complain(terminal, trouble.what());
        refuse({file, "", std::string(trouble.what()).substr(shown.size() + 2)});
        return kTrouble;
    } catch (const std::bad_alloc&) {
        Complain(terminal, shown + ": there is not enough memory to read it");
        refuse({file, "", "there is not enough memory to read it"});
        return kTrouble;
    }
    return take(*machine);
}

}  // namespace documents
