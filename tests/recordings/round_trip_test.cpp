// Every case of examples/machines, recorded: the recording is proved, gives the same documents, dumps and
// verdicts, and is recorded as itself.

#include "cases/case_folder.h"
#include "recordings/recording.h"

#include <gmock/gmock.h>

#include <clocale>
#include <limits>

namespace {

const std::filesystem::path kExamples = ORVANE_SOURCE_DIR "/examples/machines";
const std::filesystem::path kScratch = ORVANE_BINARY_DIR "/recordings";

class RecordedCase : public testing::TestWithParam<std::filesystem::path> {
protected:
    RecordedCase() { std::setlocale(LC_CTYPE, ""); }
    ~RecordedCase() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_P(RecordedCase, Recording_IsProvedAndReplaysTheCase) {
    const machine::Description original = machine::LoadDescription(GetParam());
    const recordings::Recording recording = recordings::Record(original);
    EXPECT_EQ(recordings::Unexplained(recording), "");
    const std::filesystem::path folder = kScratch / GetParam().filename();
    recordings::WriteFolder(folder, recording.text, GetParam());
    EXPECT_THAT(recordings::DifferentOutputs(GetParam(), folder),
                testing::Each(recordings::OnlyByWriting(original)));
    EXPECT_EQ(recordings::Record(recording.machine).text, recording.text);
}

INSTANTIATE_TEST_SUITE_P(Machines, RecordedCase, testing::ValuesIn(cases::FoldersOf(kExamples)),
                         [](const auto& folder) { return recordings::TestName(folder.param); });

// As for a user without administrator's rights: disks and volumes open with no access only.
TEST(RecordedUser, DevicesThatCannotBeRead_ReplayExactly) {
    machine::Description machine = machine::LoadDescription(kExamples / "uefi-workstation");
    for (machine::Disk& disk : machine.disks) {
        disk.open_for_reading_error = ERROR_ACCESS_DENIED;
    }
    for (machine::Volume& volume : machine.volumes) {
        volume.open_for_reading_error = ERROR_ACCESS_DENIED;
    }
    const recordings::Recording recording = recordings::Record(machine);
    EXPECT_EQ(recordings::Unexplained(recording), "");
    recordings::WriteFolder(kScratch / "user", machine::WriteDescription(machine),
                            kExamples / "uefi-workstation");
    recordings::WriteFolder(kScratch / "recorded-user", recording.text, kExamples / "uefi-workstation");
    EXPECT_THAT(recordings::DifferentOutputs(kScratch / "user", kScratch / "recorded-user"),
                testing::IsEmpty());
}

machine::Description MachineWithProperty(const std::string& value) {
    return machine::ParseDescription(R"({"wmi": {"Win32_OperatingSystem": [{"A": )" + value + "}]}}", "test");
}

TEST(RecordedNumber, UnsignedOf64Bits_ReplaysExactly) {
    for (const char* number : {"9223372036854775807", "9223372036854775808", "18446744073709551615"}) {
        const recordings::Recording recording = recordings::Record(
            MachineWithProperty(std::string(R"({"type": "VT_UI8", "value": )") + number + "}"));
        EXPECT_EQ(recordings::Unexplained(recording), "") << number;
        EXPECT_THAT(recording.text, testing::HasSubstr(number));
        EXPECT_EQ(recordings::Record(recording.machine).text, recording.text);
    }
}

TEST(RecordedNumber, RealThatIsNone_IsNamedByTheProof) {
    for (const double real :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        machine::Description machine = MachineWithProperty("1.5");
        for (machine::WmiProperty& property : machine.wmi[L"WIN32_OPERATINGSYSTEM"].instances.front()) {
            property.value.real = property.name == L"A" ? real : property.value.real;
        }
        EXPECT_EQ(recordings::Unexplained(recordings::Record(machine)),
                  "IWbemServices::ExecQuery on Win32_OperatingSystem: A one value here, another one there\n")
            << real;
    }
}

}  // namespace
