// orvane.exe: calls Orvane.dll as a backup agent does.

#include "tools/orvane/console.h"
#include "tools/orvane/program.h"

#include <fcntl.h>
#include <io.h>

#include <clocale>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

int wmain(int count, wchar_t** arguments) {
    // The library's log comes in the locale of the C runtime, which has few letters to begin with.
    std::setlocale(LC_CTYPE, "");
    // The document's bytes are the library's: no line feed may turn into two characters.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const host::Console console;
    return host::Run(std::vector<std::wstring>(arguments + 1, arguments + count), std::cout, std::cerr,
                     console.colour());
}
