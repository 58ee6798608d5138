#include "documents/report/map_widths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>

namespace documents {

namespace {

using testing::DoubleNear;
using testing::ElementsAre;

constexpr double kTolerance = 1e-9;

auto Near(double width) {
    return DoubleNear(width, kTolerance);
}

TEST(MapWidths, LargeParts_HaveTheirShare) {
    EXPECT_THAT(MapWidths({25, 75}, 200), ElementsAre(Near(50), Near(150)));
}

TEST(MapWidths, SmallPart_TakesFromTheOthersInProportion) {
    // A share of 1 becomes 3; the other two have 97 together, 1 to 2.
    EXPECT_THAT(MapWidths({1, 33, 66}, 100), ElementsAre(Near(3), Near(97.0 / 3), Near(97.0 * 2 / 3)));
}

TEST(MapWidths, PartThatFallsBelowTheLeastByGiving_HasTheLeast) {
    // The shares are 1, 3.02 and 95.98. After the first is raised, the second has 97 * 302 / 9900 = 2.96.
    EXPECT_THAT(MapWidths({100, 302, 9598}, 100), ElementsAre(Near(3), Near(3), Near(94)));
}

TEST(MapWidths, PartWithExactlyTheLeast_GivesNothing) {
    EXPECT_THAT(MapWidths({3, 97}, 100), ElementsAre(Near(3), Near(97)));
}

TEST(MapWidths, Order_IsThatOfTheLengths) {
    EXPECT_THAT(MapWidths({98, 1, 1}, 100), ElementsAre(Near(94), Near(3), Near(3)));
}

TEST(MapWidths, LengthsOver64BitsTogether_HaveTheirShares) {
    EXPECT_THAT(MapWidths({UINT64_MAX, UINT64_MAX}, 100), ElementsAre(Near(50), Near(50)));
}

TEST(MapWidths, LengthsOfZero_HaveTheLeast) {
    EXPECT_THAT(MapWidths({0, 0}, 100), ElementsAre(Near(3), Near(3)));
    EXPECT_THAT(MapWidths({0, 5}, 100), ElementsAre(Near(3), Near(97)));
}

TEST(MapWidths, NoParts_HaveNoWidths) {
    EXPECT_THAT(MapWidths({}, 100), ElementsAre());
}

TEST(MapWidths, AsManyAsFit_FillTheMap) {
    std::vector<std::uint64_t> lengths(100);
    std::iota(lengths.begin(), lengths.end(), 1);
    const std::vector<double> widths = MapWidths(lengths, 300);
    EXPECT_NEAR(std::accumulate(widths.begin(), widths.end(), 0.0), 300, kTolerance);
    EXPECT_THAT(widths, testing::Each(testing::Ge(3 - kTolerance)));
}

TEST(FitsMap, Parts_NeedTheLeastWidthEach) {
    EXPECT_TRUE(FitsMap(100, 300));
    EXPECT_FALSE(FitsMap(101, 300));
}

}  // namespace

}  // namespace documents
