#include "documents/diff/machines.h"
#include "documents/reader/reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace documents::diff {

namespace {

std::vector<std::filesystem::path> Cases() {
    std::vector<std::filesystem::path> cases;
    const std::filesystem::path folder = std::filesystem::path(ORVANE_SOURCE_DIR) / "examples/machines";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_directory()) {
            cases.push_back(entry.path());
        }
    }
    return cases;
}

// The documents of a case in all formats that it has.
std::vector<Machine> DocumentsOf(const std::filesystem::path& folder) {
    std::vector<Machine> machines;
    for (const char* const name : {"format1.xml", "format2.xml", "format3.xml"}) {
        std::ifstream file(folder / "expected" / name, std::ios::binary);
        if (file) {
            machines.push_back(ReadDocument(std::string(std::istreambuf_iterator<char>(file), {}), {}));
        }
    }
    return machines;
}

// Formats leave out different things; none of that is a change.
TEST(Cases, OneMachineInAllFormats_IsTheSame) {
    std::size_t pairs = 0;
    for (const std::filesystem::path& folder : Cases()) {
        SCOPED_TRACE(folder.filename().string());
        const std::vector<Machine> machines = DocumentsOf(folder);
        for (const Machine& before : machines) {
            for (const Machine& after : machines) {
                SCOPED_TRACE(static_cast<int>(before.format));
                SCOPED_TRACE(static_cast<int>(after.format));
                EXPECT_EQ(Tell(before, after, true), Told());
                ++pairs;
            }
        }
    }
    EXPECT_GE(pairs, 40U);
}

TEST(Cases, DifferentMachines_Differ) {
    const std::filesystem::path folder = std::filesystem::path(ORVANE_SOURCE_DIR) / "examples/machines";
    EXPECT_FALSE(
        Tell(DocumentsOf(folder / "bios-laptop").back(), DocumentsOf(folder / "spanned-dynamic").front())
            .empty());
}

}  // namespace

}  // namespace documents::diff
