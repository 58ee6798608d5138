// What it makes of the library's outputs on every example machine: tests/recordings.

#include "machine/recorder/redact/output_replacement.h"

#include <gtest/gtest.h>

namespace {

recorder::OutputReplacement Replacing(const std::wstring& text, std::wstring& made) {
    recorder::Replacements replacements;
    replacements.Text(text);
    replacements.Settle();
    made = replacements.Text(text);
    return recorder::OutputReplacement(replacements);
}

std::string Ascii(const std::wstring& text) {
    return {text.begin(), text.end()};
}

TEST(OutputReplacement, ValueOfAnElement_IsReplacedAndItsNameStays) {
    std::wstring made;
    const auto replacement = Replacing(L"Label", made);
    EXPECT_EQ(replacement.InLine("  <Label>Label</Label>"), "  <Label>" + Ascii(made) + "</Label>");
    EXPECT_EQ(replacement.InLine("Label: Label"), "Label: " + Ascii(made));
}

TEST(OutputReplacement, PartOfAWord_Stays) {
    std::wstring made;
    const auto replacement = Replacing(L"Bob", made);
    EXPECT_EQ(replacement.InLine("Bobcat of Bob's"), "Bobcat of " + Ascii(made) + "'s");
}

}  // namespace
