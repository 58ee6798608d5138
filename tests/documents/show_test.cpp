#include "documents/show/show.h"

#include "documents/case_documents.h"
#include "documents/text/utf8.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace {

using case_documents::Read;
using case_documents::Replaced;
using case_documents::TextOf;
using testing::Each;
using testing::HasSubstr;
using testing::Le;
using testing::Not;

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        lines.push_back(line);
    }
    return lines;
}

std::size_t Characters(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

TEST(TreeOf, SpannedVolume_StandsUnderEachOfItsDisks) {
    const std::vector<std::string> lines = LinesOf(TreeOf(Read(TextOf("spanned-dynamic", 2)), {}));
    std::size_t disk = 0;
    std::vector<std::pair<std::size_t, bool>> found;
    for (const std::string& line : lines) {
        if (line.starts_with("Disk ")) {
            disk = static_cast<std::size_t>(line[5] - '0');
        }
        if (line.find("\"Archive\"") != std::string::npos) {
            found.emplace_back(disk,
                               line.find("part " + std::to_string(disk) + " of 2") != std::string::npos);
        }
    }
    EXPECT_THAT(found, testing::ElementsAre(std::pair(1U, true), std::pair(2U, true)));
}

TEST(TreeOf, BootAndSystem_AreMarkedOnce) {
    const std::string tree = TreeOf(Read(TextOf("bios-laptop", 2)), {});
    for (const std::string mark : {"boot volume", "system volume"}) {
        const std::size_t at = tree.find(mark);
        ASSERT_NE(at, std::string::npos);
        EXPECT_EQ(tree.find(mark, at + 1), std::string::npos);
    }
    EXPECT_THAT(tree, HasSubstr("C:\\, NTFS, 146.5 GiB, 66.1 GiB used, system volume\n"));
}

TEST(TreeOf, Bytes_AreWholeNumbers) {
    const std::string tree =
        TreeOf(Read(TextOf("bios-laptop", 2)), {.bytes = true, .colour = false, .width = {}});
    EXPECT_THAT(tree, HasSubstr("Disk 0, 320072933376 bytes, MBR"));
    EXPECT_THAT(tree, Not(HasSubstr("GiB")));
}

TEST(TreeOf, Lines_AreNotWiderThanTheTerminal) {
    for (const std::size_t width : {1U, 20U, 40U, 79U}) {
        const std::vector<std::string> lines = LinesOf(
            TreeOf(Read(TextOf("spanned-dynamic", 3)), {.bytes = false, .colour = false, .width = width}));
        std::vector<std::size_t> widths(lines.size());
        std::transform(lines.begin(), lines.end(), widths.begin(), Characters);
        EXPECT_THAT(widths, Each(Le(width)));
        EXPECT_EQ(*std::max_element(widths.begin(), widths.end()), width);
    }
}

TEST(TreeOf, Colours_AddNothingButTheirSequences) {
    const documents::Machine machine = Read(TextOf("bios-laptop", 2));
    std::string coloured = TreeOf(machine, {.bytes = false, .colour = true, .width = 60});
    EXPECT_THAT(coloured, HasSubstr("\x1b["));
    for (const std::string sequence : {"\x1b[1m", "\x1b[32m", "\x1b[2m", "\x1b[0m"}) {
        for (std::size_t at = coloured.find(sequence); at != std::string::npos;
             at = coloured.find(sequence)) {
            coloured.erase(at, sequence.size());
        }
    }
    EXPECT_EQ(coloured, TreeOf(machine, {.bytes = false, .colour = false, .width = 60}));
}

TEST(TreeOf, TextsOfTheDocument_CannotSteerTheTerminal) {
    // A bidirectional override, a C1 control sequence introducer, a line feed.
    const std::string tree = TreeOf(Read(Replaced(TextOf("bios-laptop", 2), "<Label>Documents<",
                                                  "<Label>a\xE2\x80\xAE"
                                                  "b\xC2\x9B"
                                                  "2J&#10;c<")),
                                    {});
    EXPECT_THAT(tree, HasSubstr("\"a\\u202Eb\\u009B2J\\u000Ac\""));
}

TEST(SizeText, HumanUnits_HaveOneDecimal) {
    EXPECT_EQ(documents::SizeText(0, false), "0 bytes");
    EXPECT_EQ(documents::SizeText(1023, false), "1023 bytes");
    EXPECT_EQ(documents::SizeText(1024, false), "1 KiB");
    EXPECT_EQ(documents::SizeText(1536, false), "1.5 KiB");
    EXPECT_EQ(documents::SizeText(512110190592U, false), "476.9 GiB");
    EXPECT_EQ(documents::SizeText(320072933376U, false), "298.1 GiB");
    EXPECT_EQ(documents::SizeText(UINT64_MAX, false), "16 EiB");
    EXPECT_EQ(documents::SizeText(1536, true), "1536 bytes");
}

TEST(EscapedJson, Strings_MeanTheSame) {
    const nlohmann::json json = {{"a", "x\xE2\x80\xAEy\xC2\x9Bz\x7F\xC3\xBC\n"}};
    const std::string text = documents::EscapedJson(json.dump(2));
    EXPECT_THAT(text, HasSubstr("x\\u202Ey\\u009Bz\\u007F\xC3\xBC\\n"));
    EXPECT_EQ(nlohmann::json::parse(text), json);
}

}  // namespace
