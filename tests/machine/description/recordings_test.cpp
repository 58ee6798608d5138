#include "machine/description/description.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

// What was recorded in the field may enter the examples only without what tells about people.
TEST(ExampleMachines, RecordedOnes_AreRedacted) {
    constexpr std::uint32_t kPlain = 1;
    std::size_t machines = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORVANE_SOURCE_DIR "/examples/machines")) {
        if (entry.is_directory()) {
            ++machines;
            EXPECT_NE(machine::LoadDescription(entry.path()).recording, kPlain) << entry.path().filename();
        }
    }
    EXPECT_GT(machines, 0U);
    EXPECT_EQ(machine::ParseDescription(R"({"recording": "plain"})", "test").recording, kPlain);
}

}  // namespace
