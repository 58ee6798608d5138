#include "tools/orvane/delivery.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

namespace {

template <class Call>
std::string ErrorOf(Call&& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
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
