#include "machine/recorder/prove/masks.h"

#include <gtest/gtest.h>

namespace {

using recorder::Masked;

struct MaskRow {
    const char* name;
    const char* document;
    const char* masked;
};

class Masks : public testing::TestWithParam<MaskRow> {};

TEST_P(Masks, WhatDiffersBetweenCaptures_IsMasked) {
    EXPECT_EQ(Masked(GetParam().document), GetParam().masked);
}

const MaskRow kRows[] = {
    {"MadeGuid", "  <m_GUID>{0A1B2C3D-0000-4000-8000-00000000000F}</m_GUID>\n",
     "  <m_GUID>generated 1</m_GUID>\n"},
    {"SameGuidInOtherElements",
     "<m_GUID>{00000000-0000-0000-0000-000000000002}</m_GUID>\n"
     "<m_guidVolume>{00000000-0000-0000-0000-000000000001}</m_guidVolume>\n"
     "<m_guidBootVolume>{00000000-0000-0000-0000-000000000002}</m_guidBootVolume>\n"
     "<m_guidSystemVolume>{00000000-0000-0000-0000-000000000001}</m_guidSystemVolume>\n",
     "<m_GUID>generated 1</m_GUID>\n<m_guidVolume>generated 2</m_guidVolume>\n"
     "<m_guidBootVolume>generated 1</m_guidBootVolume>\n"
     "<m_guidSystemVolume>generated 2</m_guidSystemVolume>\n"},
    {"ZeroGuid", "<m_GUID>{00000000-0000-0000-0000-000000000000}</m_GUID>\n",
     "<m_GUID>{00000000-0000-0000-0000-000000000000}</m_GUID>\n"},
    {"VolumePath", "<m_GUID>\\\\?\\Volume{0A1B2C3D-0000-4000-8000-00000000000F}\\</m_GUID>\n",
     "<m_GUID>\\\\?\\Volume{0A1B2C3D-0000-4000-8000-00000000000F}\\</m_GUID>\n"},
    {"GuidOfADisk", "<disk_guid>{0A1B2C3D-0000-4000-8000-00000000000F}</disk_guid>\n",
     "<disk_guid>{0A1B2C3D-0000-4000-8000-00000000000F}</disk_guid>\n"},
    {"Address", "    <GUID>00000000027AF3C8</GUID>\n", "    <GUID>address</GUID>\n"},
    {"ZeroAddress", "<GUID>0000000000000000</GUID>\n", "<GUID>0000000000000000</GUID>\n"},
    {"GuidInsteadOfAnAddress", "<GUID>{0A1B2C3D-0000-4000-8000-00000000000F}</GUID>\n",
     "<GUID>{0A1B2C3D-0000-4000-8000-00000000000F}</GUID>\n"},
    {"VolumeGuid", "<VolumeGUID>0A1B</VolumeGUID>\n", "<VolumeGUID>0A1B</VolumeGUID>\n"},
    {"EmptyElement", "<a>\n  <b/>\n  <c></c>\n</a>\n", "<a>\n  <b></b>\n  <c></c>\n</a>\n"},
    {"TextOverTwoLines", "<b>one\ntwo</b>\n", "<b>one\ntwo</b>\n"},
    {"Numbers", "<size>0A1B</size>\n", "<size>0A1B</size>\n"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Masks, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

}  // namespace
