#include "tools/orvane/reason_codes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

struct Sentence {
    const char* code;
    const char* text;
};

// The sentences as the page on the log and the oddities have them.
constexpr Sentence kSentences[] = {
    {"R001", "This not a fixed disk, type is 5"},
    {"R002", "Extent is on disk 7 but we don't have such disk."},
    {"R003", "Failed to get drive type"},
    {"R004", "Failed to get device name"},
    {"R005", "Failed to standardize device name"},
    {"R006", "Failed to get mount points"},
    {"R007", "Failed to get volume information"},
    {"R008", "Failed to get disk free space ex"},
    {"R009", "Failed to get disk free space"},
    {"R010", "Failed to open volume"},
    {"R011", "Failed to get volume partition size"},
    {"R012", "Failed to GetVolumeDiskExtents"},
    {"R013", "Failed to open hard disk 3 error: 5"},
    {"R014", "Failed to GetDriveGeometryEx for disk 1 error: 21"},
    {"R015", "Failed to get drive 2 layout information error: 5"},
    {"R016", "Unknown disk partition style 2"},
    {"R017", "Partitions are not GPT but is 0 on disk 1"},
    {"R018", " All partitions are marked as unused entry - cannot backup disk 1"},
    {"R019", " Partition is marked as unused entry"},
    {"R020", " Can't backup partition of type Unknown {00000000-0000-0000-0000-000000000000}"},
    {"R021", "Backup cannot proceed. Failed to find any information about volume X:."},
    {"R000", "?"},
    {"R000", ""},
    {"R000", "Failed to get driven"},
};

TEST(ReasonCodes, EverySentence_HasItsCode) {
    for (const Sentence& sentence : kSentences) {
        EXPECT_EQ(host::CodeOf(sentence.text), sentence.code) << sentence.text;
    }
}

// The rows "| R001 | title |" of docs/reasons.md.
std::vector<std::string> RowsOfThePage() {
    std::ifstream page(ORVANE_SOURCE_DIR "/docs/reasons.md");
    std::vector<std::string> rows;
    std::string line;
    while (std::getline(page, line)) {
        if (line.starts_with("| R")) {
            rows.push_back(line.substr(0, line.find('|', line.find('|', 2) + 1) + 1));
        }
    }
    return rows;
}

TEST(ReasonCodes, Page_HasTheSameTable) {
    std::vector<std::string> rows;
    for (const host::ReasonCode& reason : host::ReasonCodes()) {
        rows.push_back("| " + std::string(reason.code) + " | " + std::string(reason.title) + " |");
    }
    EXPECT_EQ(RowsOfThePage(), rows);
}

}  // namespace
