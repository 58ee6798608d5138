#include "tools/orvane/capture_command.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using host::FetchDocument;

// Replaces the library's export. Each call returns the next document.
class FakeExport {
public:
    explicit FakeExport(std::vector<std::string> documents) : documents_(std::move(documents)) {}

    std::uint32_t operator()(char* buffer, std::uint32_t size, std::uint32_t* needed) {
        const std::string& document = documents_.at(std::min(calls_, documents_.size() - 1));
        ++calls_;
        sizes_.push_back(size);
        *needed = static_cast<std::uint32_t>(document.size());
        if (size < document.size()) {
            return ORVANE_BUFFER_TOO_SMALL;
        }
        std::memcpy(buffer, document.data(), document.size());
        return ORVANE_SUCCESS;
    }

    const std::vector<std::uint32_t>& sizes() const { return sizes_; }

private:
    std::vector<std::string> documents_;
    std::size_t calls_ = 0;
    std::vector<std::uint32_t> sizes_;
};

TEST(FetchDocument, SteadyDocument_TakesASizeQueryAndOneCall) {
    FakeExport library({"<root/>"});
    EXPECT_EQ(FetchDocument(std::ref(library)), "<root/>");
    EXPECT_EQ(library.sizes(), (std::vector<std::uint32_t>{0, 7}));
}

TEST(FetchDocument, GrowingDocument_IsFetchedAgain) {
    FakeExport library({"<a/>", "<abc/>", "<abcde/>"});
    EXPECT_EQ(FetchDocument(std::ref(library)), "<abcde/>");
    EXPECT_EQ(library.sizes(), (std::vector<std::uint32_t>{0, 4, 6, 8}));
}

TEST(FetchDocument, ShrinkingDocument_IsCutToItsLength) {
    FakeExport library({"<abcde/>", "<a/>"});
    EXPECT_EQ(FetchDocument(std::ref(library)), "<a/>");
}

TEST(FetchDocument, FailedSizeQuery_IsNotRepeated) {
    int calls = 0;
    EXPECT_FALSE(FetchDocument([&](char*, std::uint32_t, std::uint32_t*) {
        ++calls;
        return ORVANE_FAILED;
    }));
    EXPECT_EQ(calls, 1);
}

TEST(FetchDocument, DocumentThatGrowsForEver_IsGivenUp) {
    std::uint32_t length = 0;
    EXPECT_FALSE(FetchDocument([&](char*, std::uint32_t size, std::uint32_t* needed) {
        *needed = length = size + 1;
        return ORVANE_BUFFER_TOO_SMALL;
    }));
    EXPECT_LT(length, 100U);
}

TEST(FetchDocument, TooSmallForASmallerSize_IsAFailure) {
    EXPECT_FALSE(FetchDocument([](char*, std::uint32_t, std::uint32_t* needed) {
        *needed = 0;
        return ORVANE_BUFFER_TOO_SMALL;
    }));
}

TEST(FetchDocument, SuccessWithMoreThanTheBuffer_IsAFailure) {
    EXPECT_FALSE(FetchDocument([](char*, std::uint32_t size, std::uint32_t* needed) {
        *needed = size + 1;
        return ORVANE_SUCCESS;
    }));
}

TEST(MultiStringOf, NoVolumes_IsTheEndAlone) {
    EXPECT_EQ(host::MultiStringOf({}), std::wstring(1, L'\0'));
}

TEST(MultiStringOf, Volumes_AreEndedOneByOne) {
    EXPECT_EQ(host::MultiStringOf({L"one", L"two"}), std::wstring(L"one\0two\0\0", 9));
}

}  // namespace
