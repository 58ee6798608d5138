#include "cases/line_diff.h"

#include <gtest/gtest.h>

namespace {

using cases::Difference;

struct DiffRow {
    const char* name;
    const char* expected;
    const char* actual;
    const char* difference;
};

class LineDiff : public testing::TestWithParam<DiffRow> {};

TEST_P(LineDiff, FirstDifference_IsShownWithTheLinesAround) {
    EXPECT_EQ(Difference(GetParam().expected, GetParam().actual), GetParam().difference);
}

const DiffRow kRows[] = {
    {"Equal", "a\nb\n", "a\nb\n", ""},
    {"BothEmpty", "", "", ""},
    {"Changed", "a\nb\nc\nd\ne\nf\ng\nh\ni\n", "a\nb\nc\nd\nX\nf\ng\nh\ni\n",
     "line 5:\n  b\n  c\n  d\n- e\n+ X\n  f\n  g\n  h\n"},
    {"Added", "a\nb\n", "a\nX\nY\nb\n", "line 2:\n  a\n+ X\n+ Y\n  b\n"},
    {"Removed", "a\nX\nb\n", "a\nb\n", "line 2:\n  a\n- X\n  b\n"},
    {"AddedAtTheEnd", "a\n", "a\nb\n", "line 2:\n  a\n+ b\n"},
    {"RemovedAtTheEnd", "a\nb\n", "a\n", "line 2:\n  a\n- b\n"},
    {"NothingExpected", "", "a\n", "line 1:\n+ a\n"},
    {"NoLineFeed", "a\nb\n", "a\nb", "line 2:\n  a\n- b\n+ b(no line feed)\n"},
    {"OnlyTheFirst", "a\n1\nb\n2\n", "a\nX\nb\nY\n", "line 2:\n  a\n- 1\n+ X\n  b\n  2\n"},
};

INSTANTIATE_TEST_SUITE_P(Rows, LineDiff, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(LineDiff, LongDifference_IsCut) {
    std::string expected;
    for (int line = 1; line <= 15; ++line) {
        expected += std::to_string(line) + "\n";
    }
    EXPECT_EQ(Difference(expected, ""),
              "line 1:\n- 1\n- 2\n- 3\n- 4\n- 5\n- 6\n- 7\n- 8\n- 9\n- 10\n- 11\n- 12\n- ... 3 more lines\n");
}

}  // namespace
