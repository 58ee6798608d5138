// Writes the expected files of one case. `make expect CASE=NAME` runs it; no test does.
// usage: expect FOLDER

#include "cases/expected_files.h"
#include "cases/readme_quotes.h"
#include "machine/description/text.h"

#include <clocale>
#include <cstdio>
#include <exception>

int wmain(int count, wchar_t** arguments) {
    // As in orvane.exe: the library's log uses the locale of the C runtime.
    std::setlocale(LC_CTYPE, "");
    if (count != 2) {
        std::fputs("usage: expect FOLDER\n", stderr);
        return 2;
    }
    try {
        for (const std::string& change : cases::WriteExpectedFiles(arguments[1])) {
            std::printf("%s\n", change.c_str());
        }
        for (const std::string& quote : cases::UnmetQuotes(arguments[1])) {
            std::printf("not as the README says: %s\n", quote.c_str());
        }
        std::puts("Read every changed line: git diff shows them. The README has to name those that matter.");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "expect: %s\n", error.what());
        return 1;
    }
}
