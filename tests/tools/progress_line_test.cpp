#include "tools/orvane/progress_line.h"

#include "support/scoped_import.h"

#include <gtest/gtest.h>
#include <io.h>

#include <cstddef>
#include <sstream>
#include <string>

namespace {

int IsTerminal(int /*file*/) {
    return 1;
}

int IsFile(int /*file*/) {
    return 0;
}

std::string ShownText(const std::string& text) {
    std::ostringstream errors;
    host::ProgressLine(errors).Show(text);
    return errors.str();
}

TEST(ProgressLine, Terminal_ShowsOneEscapedLineAndRemovesIt) {
    const support::ScopedImport<decltype(&_isatty)> import("_isatty", &IsTerminal);
    constexpr std::size_t kWidth = 78;
    const std::string line = "question 1, CreateFileW A\\u000AB\\u001B[2J";
    const std::string rest(kWidth - line.size(), ' ');
    EXPECT_EQ(ShownText("question 1, CreateFileW A\nB\x1B[2J"),
              '\r' + line + rest + '\r' + std::string(kWidth, ' ') + '\r');
}

TEST(ProgressLine, File_ShowsNothing) {
    const support::ScopedImport<decltype(&_isatty)> import("_isatty", &IsFile);
    EXPECT_EQ(ShownText("question 1"), "");
}

}  // namespace
