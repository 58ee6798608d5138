#include "machine/recorder/observe/observations_file.h"

#include <gmock/gmock.h>

namespace {

using recorder::Observation;
using recorder::Observations;
using testing::HasSubstr;

Observations Sample() {
    Observations observations;
    observations.circumstances.administrator = false;
    recorder::Answer listing;
    listing.step = "FindNextVolumeW";
    listing.error = 87;
    listing.parts = {{1, L"Size \xD800", L"VT_BSTR", 0, 0, {0x31, 0x00}}, {0, L"", L"", 0x80041003, 7, {}}};
    observations.Add({{"FindFirstVolumeW", L"", 0, 260}, listing});
    recorder::Answer layout;
    layout.error = 234;
    layout.value = 5;
    layout.returned = 32;
    layout.bytes = {0x00, 0xFE};
    observations.Add(
        {{"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX", L"\\\\.\\PhysicalDrive0", GENERIC_READ, 4},
         layout});
    recorder::Answer blocked;
    blocked.blocks = true;
    observations.Add({{"GetDriveTypeW", L"X:\\", 0, 0}, blocked});
    return observations;
}

TEST(ObservationsFile, WrittenText_ReadsAsTheSame) {
    const Observations sample = Sample();
    const Observations read = recorder::ParseObservations(recorder::ObservationsText(sample), "sample");
    EXPECT_EQ(read.circumstances, sample.circumstances);
    ASSERT_EQ(read.all().size(), sample.all().size());
    for (std::size_t i = 0; i < sample.all().size(); ++i) {
        EXPECT_EQ(read.all()[i].question, sample.all()[i].question);
        EXPECT_EQ(read.all()[i].answer, sample.all()[i].answer);
    }
}

TEST(ObservationsFile, Answer_IsOneLineThatNamesWhatItHolds) {
    EXPECT_THAT(
        recorder::ObservationsText(Sample()),
        HasSubstr("{\"call\":\"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX\",\"object\":\"\\\\\\\\.\\\\"
                  "PhysicalDrive0\",\"access\":\"read\",\"size\":4,\"error\":234,\"value\":5,"
                  "\"returned\":32,\"bytes\":\"00fe\"},\n"));
}

TEST(ObservationsFile, OtherVersion_IsRefusedWithItsPlace) {
    try {
        recorder::ParseObservations(R"({"observations": 2, "answers": []})", "file.json");
        FAIL() << "it was read";
    } catch (const machine::DescriptionError& error) {
        EXPECT_EQ(error.file(), "file.json");
        EXPECT_EQ(error.path(), "/observations");
    }
}

TEST(ObservationsFile, UnknownKeyOfAnAnswer_IsRefused) {
    EXPECT_THROW(
        recorder::ParseObservations(
            R"({"observations": 1, "answers": [{"call": "GetLogicalDrives", "erorr": 5}]})", "file.json"),
        machine::DescriptionError);
}

TEST(Observations, Best_PrefersSuccessThenReadAccessThenTheLargestBuffer) {
    Observations observations;
    const auto add = [&](std::uint32_t access, std::uint32_t size, std::uint32_t error) {
        recorder::Answer answer;
        answer.error = error;
        observations.Add({{"CreateFileW", L"x", access, size}, answer});
    };
    add(GENERIC_READ, 8, 122);
    add(0, 64, 0);
    EXPECT_EQ(observations.Best("CreateFileW", L"X")->question.size, 64U);
    add(GENERIC_READ, 16, 0);
    add(GENERIC_READ, 32, 0);
    EXPECT_EQ(observations.Best("CreateFileW", L"X")->question.size, 32U);
    EXPECT_EQ(observations.Best("CreateFileW", L"other"), nullptr);
}

}  // namespace
