#include "tools/orvane/redaction.h"

#include <gtest/gtest.h>

namespace {

TEST(RedactionOfFindings, LineThatStillHoldsAPrivateValue_IsLeftOut) {
    recorder::Replacements replacements;
    replacements.Text(L"Wessling");
    replacements.Settle();
    const recorder::ShownLine shown = host::WithoutPrivateValues(replacements);
    EXPECT_EQ(shown("disk Wesslinger-100"), "(a line with a private value)");
    EXPECT_EQ(shown("<VolumeLabel>Wessling</VolumeLabel>").find("Wessling"), std::string::npos);
    EXPECT_NE(shown("<VolumeLabel>Wessling</VolumeLabel>").find("<VolumeLabel>"), std::string::npos);
    EXPECT_EQ(shown("Disk id: 0"), "Disk id: 0");
}

}  // namespace
