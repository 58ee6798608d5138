#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <string>

namespace machine_test {
namespace {

// An MBR and a GPT disk, and the volumes that the test gives.
std::string OnTwoDisks(const std::string& volumes) {
    return R"({"disks": [
        {"index": 0, "size": "300 GiB", "signature": "0xD67A5740", "partitions": [
            {"offset": "1 MiB", "size": "100 GiB", "type": "ntfs"},
            {"offset": 237659750400, "size": "1 GiB", "type": "ntfs"},
            {"offset": "250 GiB", "size": "1 GiB", "type": "ldm"}]},
        {"index": 1, "size": "10 GiB", "style": "gpt", "partitions": [
            {"offset": "1 MiB", "size": "100 MiB", "type": "efi-system"},
            {"offset": "2 GiB", "size": "1 GiB", "type": "recovery"}]},
        {"index": 2, "size": "1 GiB", "signature": 0, "partitions": [
            {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"}]},
        {"index": 3, "size": "1 GiB", "superFloppy": {"number": 1}}],
        "volumes": [)" +
           volumes + "]}";
}

std::wstring GuidOf(const std::string& volume) {
    return Parse(OnTwoDisks(volume)).volumes.at(0).guid;
}

bool HasPlace(const std::wstring& guid) {
    return guid.find(L"-0000-0000-") != std::wstring::npos;
}

TEST(MbrVolumeGuid, CarriesSignatureAndOffset) {
    EXPECT_EQ(GuidOf(R"({"partition": {"disk": 0, "number": 2}})"),
              L"{d67a5740-0000-0000-0000-a05537000000}");
    EXPECT_EQ(GuidOf(R"({"partition": {"disk": 0, "number": 1}})"),
              L"{d67a5740-0000-0000-0000-100000000000}");
}

TEST(MbrVolumeGuid, OtherVolumes_HaveDerivedOnes) {
    for (const char* volume : {
             R"({"partition": {"disk": 1, "number": 2}})",
             R"({"partition": {"disk": 0, "number": 3}})",
             R"({"partition": {"disk": 2, "number": 1}})",
             R"({"partition": {"disk": 3, "number": 1}})",
             R"({"extents": [{"disk": 0, "offset": "2 MiB", "length": "1 MiB"}]})",
             R"({"extents": [{"disk": 0, "offset": "1 MiB", "length": "1 MiB"},
                             {"disk": 1, "offset": "1 MiB", "length": "1 MiB"}]})",
         }) {
        EXPECT_EQ(GuidOf(volume).size(), 38u) << volume;
        EXPECT_FALSE(HasPlace(GuidOf(volume))) << volume;
    }
}

TEST(MbrVolumeGuid, SecondVolumeAtTheSamePlace_HasADerivedOne) {
    const machine::Description description = Parse(
        OnTwoDisks(R"({"partition": {"disk": 0, "number": 1}}, {"partition": {"disk": 0, "number": 1}})"));
    EXPECT_TRUE(HasPlace(description.volumes[0].guid));
    EXPECT_FALSE(HasPlace(description.volumes[1].guid));
}

TEST(MbrVolumeGuid, DescribedGuid_IsKept) {
    EXPECT_EQ(GuidOf(R"({"partition": {"disk": 0, "number": 1},
                         "guid": "{00000000-0000-0000-0000-000000000009}"})"),
              L"{00000000-0000-0000-0000-000000000009}");
    EXPECT_EQ(GuidOf(R"({"partition": {"disk": 1, "number": 1}, "guid": null})"), L"");
}

TEST(ShadowCopy, WithoutGuid_IsOpenedByItsDeviceAndHasNoVolumeName) {
    Machine machine(OnTwoDisks(R"(
        {"device": "\\Device\\HarddiskVolumeShadowCopy1", "guid": null, "unchecked": true},
        {"device": "\\Device\\HarddiskVolumeShadowCopy2", "guid": null,
         "extents": [{"disk": 0, "offset": "1 MiB", "length": "100 GiB"}]})"));
    wchar_t name[64];
    EXPECT_EQ(machine.kernel.FindFirstVolumeW(name, 64), INVALID_HANDLE_VALUE);
    const HANDLE failing =
        machine.kernel.Open(L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy1", GENERIC_READ);
    ASSERT_NE(failing, INVALID_HANDLE_VALUE);
    EXPECT_EQ(machine.kernel.Ask(failing, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 64).error,
              DWORD{ERROR_INVALID_FUNCTION});
    const HANDLE origin =
        machine.kernel.Open(L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy2", GENERIC_READ);
    const auto extents = machine.kernel.Ask(origin, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 64);
    EXPECT_EQ(extents.As<DISK_EXTENT>(8).StartingOffset.QuadPart, 1LL << 20);
    machine.kernel.CloseHandle(failing);
    machine.kernel.CloseHandle(origin);
}

TEST(ForeignVolume, OddOffsetAndUnknownDisk_AreTold) {
    Machine machine(OnTwoDisks(R"(
        {"device": "\\Device\\SampleCryptVolumeK", "mountPoints": ["K:\\"],
         "extents": [{"disk": 0, "offset": 1050113, "length": "1 GiB"}]},
        {"device": "\\Device\\SampleRamVolume", "mountPoints": ["R:\\"], "unchecked": true,
         "extents": [{"disk": 77, "offset": 0, "length": "1 GiB"}]})"));
    const HANDLE odd = machine.kernel.Open(L"\\\\.\\K:");
    EXPECT_EQ(machine.kernel.Ask(odd, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 32)
                  .As<DISK_EXTENT>(8)
                  .StartingOffset.QuadPart,
              1050113);
    const HANDLE unknown = machine.kernel.Open(L"\\\\.\\R:");
    EXPECT_EQ(
        machine.kernel.Ask(unknown, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 32).As<DISK_EXTENT>(8).DiskNumber,
        77u);
    machine.kernel.CloseHandle(odd);
    machine.kernel.CloseHandle(unknown);
}

TEST(ForeignVolume, ExtentOfAnotherLength_IsNotThePartitionAtItsOffset) {
    const machine::Description description = Parse(OnTwoDisks(R"(
        {"extents": [{"disk": 0, "offset": "1 MiB", "length": "1 GiB"}]},
        {"extents": [{"disk": 0, "offset": "1 MiB", "length": "1 GiB"}], "partitionNumber": 1},
        {"extents": [{"disk": 0, "offset": "1 MiB", "length": "100 GiB"}]})"));
    EXPECT_FALSE(description.volumes[0].partition);
    ASSERT_TRUE(description.volumes[1].partition);
    EXPECT_EQ(description.volumes[1].partition->number, 1u);
    EXPECT_EQ(description.volumes[1].partition->length, 1ULL << 30);
    ASSERT_TRUE(description.volumes[2].partition);
    EXPECT_EQ(description.volumes[2].partition->length, 100ULL << 30);
}

TEST(ForeignVolume, LinkTarget_IsWhatTheLinkNamesAndOpensTheSameVolume) {
    Machine machine(OnTwoDisks(R"(
        {"guid": "{00000000-0000-0000-0000-000000000001}", "device": "\\Device\\HarddiskVolume9",
         "linkTarget": "\\Device\\SampleFs7", "label": "Sample",
         "extents": [{"disk": 0, "offset": "3 MiB", "length": "1 GiB"}]})"));
    wchar_t target[64];
    ASSERT_GT(machine.kernel.QueryDosDeviceW(L"Volume{00000000-0000-0000-0000-000000000001}", target, 64),
              0u);
    EXPECT_STREQ(target, L"\\Device\\SampleFs7");
    ASSERT_GT(machine.kernel.QueryDosDeviceW(L"HarddiskVolume9", target, 64), 0u);
    EXPECT_STREQ(target, L"\\Device\\HarddiskVolume9");
    for (const wchar_t* root :
         {L"\\\\?\\GLOBALROOT\\Device\\SampleFs7\\", L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume9\\",
          L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\"}) {
        wchar_t label[64] = {};
        EXPECT_TRUE(
            machine.kernel.GetVolumeInformationW(root, label, 64, nullptr, nullptr, nullptr, nullptr, 0));
        EXPECT_STREQ(label, L"Sample");
    }
    EXPECT_THROW(
        Parse(R"({"volumes": [{"extents": [], "device": "\\Device\\A", "linkTarget": "\\Device\\a"}]})"),
        machine::DescriptionError);
}

TEST(LockedVolume, Information_FailsWithTheFullCode) {
    Machine machine(OnTwoDisks(R"({"partition": {"disk": 0, "number": 1}, "mountPoints": ["D:\\"],
                                   "errors": {"GetVolumeInformationW": "0x80310000"}})"));
    EXPECT_FALSE(
        machine.kernel.GetVolumeInformationW(L"D:\\", nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(GetLastError(), DWORD{0x80310000});
}

}  // namespace
}  // namespace machine_test
