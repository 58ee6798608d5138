#include "machine/page/format_page.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace machine_test {
namespace {

TEST(FormatPage, Tables_AreThoseOfTheRows) {
    std::ifstream stream(ORVANE_SOURCE_DIR "/docs/machine-format.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    ASSERT_NE(page.find("<!-- rows: machine -->"), std::string::npos);
    EXPECT_EQ(WithTables(page), page) << "write them anew: make format-page";
}

TEST(FormatPage, Table_ReplacesWhatStandsBetweenItsMarkers) {
    const std::string page = WithTables("a\n<!-- rows: firmware -->\nold\n<!-- end -->\nb\n");
    EXPECT_EQ(page.find("a\n<!-- rows: firmware -->\n| key | value | default | meaning |\n"), 0u);
    EXPECT_EQ(page.find("old"), std::string::npos);
    EXPECT_NE(page.find("| `variableLength` | number | 0 |"), std::string::npos);
    EXPECT_EQ(page.substr(page.size() - 15), "<!-- end -->\nb\n");
}

TEST(FormatPage, UnknownTable_IsRefused) {
    EXPECT_THROW(WithTables("<!-- rows: none -->\n<!-- end -->\n"), std::invalid_argument);
    EXPECT_THROW(WithTables("<!-- rows: disk -->\n"), std::invalid_argument);
}

}  // namespace
}  // namespace machine_test
