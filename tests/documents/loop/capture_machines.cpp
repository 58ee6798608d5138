// Captures described machines one after the other, in one process.
// usage: capture_machines LIST
// Each line of the file LIST (UTF-8) is the path of a description, a tab, and the path of the document to be
// written. If the capture fails, its errors are written to that path with ".errors" behind it instead.

#include "machine/description/text.h"
#include "support/log_capture.h"
#include "tools/orvane/library_session.h"
#include "tools/orvane/text_encoding.h"

#include <clocale>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace {

constexpr std::uint32_t kFormat = 2;
constexpr std::uint32_t kLargestDocument = 16U << 20;

// Throws std::runtime_error with the errors of the log, and other std::exceptions.
std::string DocumentOf(const std::filesystem::path& description) {
    const host::LibrarySession session(description);
    const host::OrvaneLibrary& library = session.library();
    const support::LogCapture log(library.SetEventFunc);
    library.SetXmlFormat(kFormat);
    std::string document(kLargestDocument, '\0');
    std::uint32_t size = kLargestDocument;
    if (library.CaptureSystemRestorePointInfo(document.data(), kLargestDocument, &size) != ORVANE_SUCCESS) {
        std::string errors;
        for (const support::LogLine& line : log.all()) {
            errors += line.level >= ORVANE_LEVEL_WARNING ? host::FromLocale(line.text.c_str()) + '\n' : "";
        }
        throw std::runtime_error(errors);
    }
    document.resize(size);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + host::FromAnsi(document);
}

void CaptureOne(const std::string& line) {
    const std::size_t tab = line.find('\t');
    std::filesystem::path output = machine::Widen(line.substr(tab + 1));
    std::string text;
    try {
        text = DocumentOf(machine::Widen(line.substr(0, tab)));
    } catch (const std::exception& error) {
        output += ".errors";
        text = error.what();
    }
    std::ofstream(output, std::ios::binary) << text;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    std::setlocale(LC_CTYPE, "");
    std::ifstream list(count == 2 ? std::filesystem::path(arguments[1]) : std::filesystem::path());
    if (!list) {
        std::fputs("usage: capture_machines LIST\n", stderr);
        return 2;
    }
    for (std::string line; std::getline(list, line);) {
        CaptureOne(line);
    }
    return 0;
}
