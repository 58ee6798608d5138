#include "common/disk/partition_gpt.h"
#include "common/disk/partition_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/disk/partition_entries.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Info;
using testing::Contains;
using testing::ElementsAre;

constexpr GUID kPartitionId = {0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

struct StyleCase {
    std::uint32_t style;
    const char* line;
    const char* element;
};

constexpr StyleCase kStyles[] = {
    {0, "    Style: MBR", "Style=MBR"},
    {1, "    Style: GPT", "Style=GPT"},
    {2, "  Partition style: RAW", "PartitionStyle=RAW"},
    {7, "  Partition style: 7", "PartitionStyle=7"},
    {0xFFFFFFFF, "  Partition style: -1", "PartitionStyle=-1"},
};

PARTITION_INFORMATION_EX FullGptEntry(std::wstring_view name) {
    PARTITION_INFORMATION_EX entry = entries::Gpt(0x100000, 1610612736, entries::kLdmData, name);
    entry.PartitionNumber = 3;
    entry.RewritePartition = TRUE;
    entry.Gpt.PartitionId = kPartitionId;
    entry.Gpt.Attributes = 0x8000000000000001;
    return entry;
}

template <class Kind>
std::vector<std::string> ElementsOf(const PARTITION_INFORMATION_EX& entry) {
    Kind partition;
    partition.Initialize(entry);
    return captured::Elements([&](CMSXmlNode& node) { partition.CaptureInfo(node); });
}

class PartitionDumpTest : public testing::Test {
protected:
    template <class Kind>
    void Dump(const PARTITION_INFORMATION_EX& entry) {
        Kind partition;
        partition.Initialize(entry);
        partition.DumpInfo();
    }

    support::LoggerCapture log_;
};

TEST_F(PartitionDumpTest, Gpt_NameOf36Characters_StandsWhole) {
    Dump<PartitionGPT>(FullGptEntry(L"abcdefghijklmnopqrstuvwxyz0123456789"));

    EXPECT_THAT(log_.Messages(), Contains(Info("    Name: abcdefghijklmnopqrstuvwxyz0123456789")));
}

TEST_F(PartitionDumpTest, Gpt_UnlistedType_IsUnknown) {
    Dump<PartitionGPT>(entries::Gpt(0x100000, 0x100000, entries::kForeign));

    EXPECT_THAT(log_.Messages(),
                Contains(Info("    Type: Unknown partition ({0FC63DAF-8483-4772-8E79-3D69D8477DE4})")));
}

TEST_F(PartitionDumpTest, EveryStyle_HasItsLine) {
    for (const StyleCase& style : kStyles) {
        log_.Clear();
        PARTITION_INFORMATION_EX entry{};
        entries::SetStyle(entry, style.style);
        Dump<PartitionMBR>(entry);
        ASSERT_GT(log_.Messages().size(), 5U);
        EXPECT_EQ(Info(style.line), log_.Messages()[5]);
    }
}

TEST(PartitionCaptureTest, Gpt_WritesTheCommonElementsOnly) {
    EXPECT_THAT(ElementsOf<PartitionGPT>(FullGptEntry(L"Data")),
                ElementsAre("DynamicPartition=True", "PartitionNumber=3", "Offset=1048576",
                            "Length=1610612736", "RewritePartition=True", "Style=GPT"));
}

TEST(PartitionCaptureTest, Numbers_HighBitsSet_KeepTheirSigns) {
    PARTITION_INFORMATION_EX entry = entries::Mbr(-1, -2, 0xFF);
    entry.PartitionNumber = 0xFFFFFFFF;
    entry.Mbr.HiddenSectors = 0xFFFFFFFE;

    EXPECT_THAT(ElementsOf<PartitionMBR>(entry),
                ElementsAre("DynamicPartition=False", "PartitionNumber=4294967295", "Offset=-1", "Length=-2",
                            "RewritePartition=False", "Style=MBR", "Type=255", "BootIndicator=False",
                            "RecognizedPartition=True", "HiddenSectors=4294967294"));
}

TEST(PartitionCaptureTest, Mbr_BootIndicatorAndRecognizedOfTwo_AreTrue) {
    PARTITION_INFORMATION_EX entry = entries::Mbr(0x100000, 0x100000);
    entry.Mbr.BootIndicator = 2;
    entry.Mbr.RecognizedPartition = 2;

    const std::vector<std::string> elements = ElementsOf<PartitionMBR>(entry);

    EXPECT_THAT(elements, Contains("BootIndicator=True"));
    EXPECT_THAT(elements, Contains("RecognizedPartition=True"));
}

TEST(PartitionCaptureTest, EveryStyle_HasItsElement) {
    for (const StyleCase& style : kStyles) {
        PARTITION_INFORMATION_EX entry = entries::Gpt(0x100000, 0x100000);
        entries::SetStyle(entry, style.style);
        const std::vector<std::string> elements = ElementsOf<PartitionGPT>(entry);
        ASSERT_EQ(6U, elements.size());
        EXPECT_EQ(style.element, elements[5]);
    }
}

}  // namespace
}  // namespace bmr_common
