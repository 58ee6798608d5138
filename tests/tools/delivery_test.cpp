#include "tools/orvane/delivery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

using testing::AllOf;
using testing::HasSubstr;

template <class Call>
std::string ErrorOf(Call&& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

TEST(DeliverToFile, Text_IsWrittenByteForByte) {
    const auto file = std::filesystem::temp_directory_path() / "orvane-delivery-test.txt";
    host::DeliverToFile(file, "one\ntwo\r\n", "the text");
    {
        std::ifstream in(file, std::ios::binary);
        EXPECT_EQ((std::string{std::istreambuf_iterator<char>(in), {}}), "one\ntwo\r\n");
    }
    std::filesystem::remove(file);
}

TEST(DeliverToFile, FileThatCannotBeMade_IsNamed) {
    const std::string error = ErrorOf([] {
        host::DeliverToFile(std::filesystem::temp_directory_path() / "no-such-folder" / "out.txt", "x",
                            "the text");
    });
    EXPECT_THAT(error, AllOf(HasSubstr("out.txt"), HasSubstr("the text cannot be written")));
}

TEST(DeliverToStream, StreamThatFails_IsTold) {
    std::ostringstream out;
    host::DeliverToStream(out, "text", "the text");
    EXPECT_EQ(out.str(), "text");
    out.setstate(std::ios::badbit);
    EXPECT_EQ(ErrorOf([&] { host::DeliverToStream(out, "more", "the text"); }),
              "the text cannot be written to standard output");
}

}  // namespace
