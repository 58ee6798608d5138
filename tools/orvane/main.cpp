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
    // The library's log uses the locale of the C runtime, which supports few characters by default.
    std::setlocale(LC_CTYPE, "");
    // Binary mode keeps the document's bytes unchanged: no carriage return before a line feed.
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const host::Console console;
    return host::Run(std::vector<std::wstring>(arguments + 1, arguments + count),
                     {std::cin, std::cout, std::cerr, console.colour(), console.width()});
}
