// Writes the tables of docs/machine-format.md anew. Usage: format_page FILE
#include "machine/page/format_page.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <string>

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: format_page FILE\n", stderr);
        return 2;
    }
    std::ifstream input(arguments[1], std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    input.close();
    try {
        std::ofstream(arguments[1], std::ios::binary) << machine_test::WithTables(page);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", arguments[1], error.what());
        return 1;
    }
    return 0;
}
