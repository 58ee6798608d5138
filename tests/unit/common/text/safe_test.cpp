#include "common/text/safe.h"

#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <stdexcept>
#include <string>

namespace {

using testing::ThrowsMessage;

class SafeMemoryCopy : public testing::Test {
protected:
    std::array<char, 8> destination_ = {'.', '.', '.', '.', '.', '.', '.', '.'};
    const std::array<char, 8> source_ = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};

    std::string destination() const { return {destination_.data(), destination_.size()}; }
};

TEST_F(SafeMemoryCopy, CountOfTheWholeSize_FillsTheDestination) {
    safe::MemoryCopy(destination_.data(), destination_.size(), source_.data(), 8);
    EXPECT_EQ(destination(), "abcdefgh");
}

TEST_F(SafeMemoryCopy, CountZeroAndNullPointers_DoesNothing) {
    EXPECT_NO_THROW(safe::MemoryCopy(nullptr, 0, nullptr, 0));
    EXPECT_NO_THROW(safe::MemoryCopy(destination_.data(), 0, nullptr, 0));
    EXPECT_EQ(destination(), "........");
}

TEST_F(SafeMemoryCopy, NullDestination_Throws) {
    const std::function<void()> copy = [&] { safe::MemoryCopy(nullptr, 8, source_.data(), 1); };
    EXPECT_THAT(copy,
                ThrowsMessage<std::invalid_argument>("Null pointer parameter 'dest' passed to MemoryCopy"));
}

TEST_F(SafeMemoryCopy, NullSource_Throws) {
    const std::function<void()> copy = [&] { safe::MemoryCopy(destination_.data(), 8, nullptr, 1); };
    EXPECT_THAT(copy,
                ThrowsMessage<std::invalid_argument>("Null pointer parameter 'src' passed to MemoryCopy"));
}

TEST_F(SafeMemoryCopy, CountAboveTheSize_ThrowsAndCopiesNothing) {
    const std::function<void()> copy = [&] { safe::MemoryCopy(destination_.data(), 2, source_.data(), 3); };
    EXPECT_THAT(copy, ThrowsMessage<std::length_error>("Buffer overrun in MemoryCopy"));
    EXPECT_EQ(destination(), "........");
}

struct Overlap {
    std::size_t to;
    std::size_t from;
    std::size_t count;
    bool refused;
};

class SafeMemoryCopyOverlaps : public testing::TestWithParam<Overlap> {};

TEST_P(SafeMemoryCopyOverlaps, RangesOfOneBuffer_AreRefusedWhereTheyOverlap) {
    const auto [to, from, count, refused] = GetParam();
    std::string buffer = "0123456789";
    const std::function<void()> copy = [&, to = to, from = from, count = count] {
        safe::MemoryCopy(buffer.data() + to, buffer.size() - to, buffer.data() + from, count);
    };
    if (refused) {
        EXPECT_THAT(copy,
                    ThrowsMessage<std::length_error>("Source and destination are overlapping in MemoryCopy"));
        EXPECT_EQ(buffer, "0123456789");
    } else {
        EXPECT_NO_THROW(copy());
        EXPECT_EQ(buffer.substr(to, count), std::string("0123456789").substr(from, count));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, SafeMemoryCopyOverlaps,
                         testing::Values(Overlap{0, 0, 1, true},   //
                                         Overlap{0, 3, 4, true},   //
                                         Overlap{3, 0, 4, true},   //
                                         Overlap{2, 1, 5, true},   //
                                         Overlap{0, 4, 4, false},  //
                                         Overlap{4, 0, 4, false},  //
                                         Overlap{9, 0, 1, false}));

TEST(SafeStringLength, TerminatedText_IsTheCharactersBeforeTheTerminator) {
    EXPECT_EQ(safe::StringLengthTemplate(L"abc", 100), 3U);
    EXPECT_EQ(safe::StringLengthTemplate("narrow", 100), 6U);
    EXPECT_EQ(safe::StringLengthTemplate(L"", 1), 0U);
}

TEST(SafeStringLength, TerminatorAsTheLastCharacterLookedAt_IsFound) {
    EXPECT_EQ(safe::StringLengthTemplate(L"abc", 4), 3U);
}

TEST(SafeStringLength, TerminatorBehindTheMaximum_Throws) {
    const std::function<void()> measure = [] { safe::StringLengthTemplate(L"abc", 3); };
    EXPECT_THAT(measure, ThrowsMessage<std::length_error>("Buffer overrun in StringLengthTemplate"));
}

TEST(SafeStringLength, MaximumZero_Throws) {
    const std::function<void()> measure = [] { safe::StringLengthTemplate(L"", 0); };
    EXPECT_THAT(measure, ThrowsMessage<std::length_error>("Buffer overrun in StringLengthTemplate"));
}

TEST(SafeStringLength, NullText_Throws) {
    const std::function<void()> measure = [] { safe::StringLengthTemplate<wchar_t>(nullptr, 10); };
    EXPECT_THAT(measure, ThrowsMessage<std::invalid_argument>(
                             "Null pointer parameter passed to StringLengthTemplate"));
}

}  // namespace
