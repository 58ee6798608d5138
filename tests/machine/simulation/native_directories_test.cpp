#include "machine/simulation/simulated_functions.h"
#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace machine_test {
namespace {

constexpr NTSTATUS kDone = 0;
constexpr auto kMoreEntries = static_cast<NTSTATUS>(0x00000105);
constexpr auto kNoMoreEntries = static_cast<NTSTATUS>(0x8000001A);
constexpr auto kInvalidHandle = static_cast<NTSTATUS>(0xC0000008);
constexpr auto kInvalidParameter = static_cast<NTSTATUS>(0xC000000D);
constexpr auto kAccessDenied = static_cast<NTSTATUS>(0xC0000022);
constexpr auto kTooSmall = static_cast<NTSTATUS>(0xC0000023);
constexpr auto kNotFound = static_cast<NTSTATUS>(0xC0000034);
constexpr auto kPathSyntaxBad = static_cast<NTSTATUS>(0xC000003B);

struct Record {
    UNICODE_STRING name;
    UNICODE_STRING type;
};

struct Native {
    decltype(&machine::simulated::ZwOpenDirectoryObject) open =
        Bound<decltype(&machine::simulated::ZwOpenDirectoryObject)>(L"ntdll.dll", "ZwOpenDirectoryObject");
    decltype(&machine::simulated::ZwQueryDirectoryObject) query =
        Bound<decltype(&machine::simulated::ZwQueryDirectoryObject)>(L"ntdll.dll", "ZwQueryDirectoryObject");
    decltype(&machine::simulated::ZwClose) close =
        Bound<decltype(&machine::simulated::ZwClose)>(L"ntdll.dll", "ZwClose");

    NTSTATUS Open(const wchar_t* path, HANDLE* handle, ACCESS_MASK access = 1, ULONG length = 48) const {
        std::wstring text = path;
        UNICODE_STRING name{};
        name.Length = static_cast<USHORT>(text.size() * 2);
        name.MaximumLength = static_cast<USHORT>(name.Length + 2);
        name.Buffer = text.data();
        OBJECT_ATTRIBUTES attributes{};
        attributes.Length = length;
        attributes.ObjectName = &name;
        attributes.Attributes = 0x40;
        return open(handle, access, &attributes);
    }
};

using Listing = std::vector<std::pair<std::wstring, std::wstring>>;

Listing ListAll(const Native& native, HANDLE directory) {
    Listing listing;
    alignas(8) unsigned char buffer[1024];
    ULONG context = 0;
    BOOLEAN restart = TRUE;
    while (native.query(directory, buffer, sizeof(buffer), TRUE, restart, &context, nullptr) == kDone) {
        const auto* record = reinterpret_cast<const Record*>(buffer);
        listing.emplace_back(record->name.Buffer, record->type.Buffer);
        restart = FALSE;
    }
    return listing;
}

bool Contains(const Listing& listing, const wchar_t* name, const wchar_t* type) {
    for (const auto& [own_name, own_type] : listing) {
        if (own_name == name && own_type == type) {
            return true;
        }
    }
    return false;
}

std::string WithOtherNames(const std::string& path) {
    std::string json = SmallMachine();
    json.erase(json.rfind('}'));
    return json + R"(, "directories": {")" + path + R"(": {"otherNames": 300}}})";
}

// The number of names in the listing that are longer than `length`.
std::size_t LongerThan(const Listing& listing, std::size_t length) {
    return static_cast<std::size_t>(std::count_if(
        listing.begin(), listing.end(), [&](const auto& entry) { return entry.first.size() > length; }));
}

TEST(NativeDirectory, OtherNamesInDevice_StandBetweenTheOthersAndManyAreLong) {
    const Native native;
    const auto list = [&](const std::string& json) {
        Machine machine(json);
        HANDLE directory = nullptr;
        EXPECT_EQ(native.Open(L"\\Device", &directory), kDone);
        Listing listing = ListAll(native, directory);
        EXPECT_EQ(native.close(directory), kDone);
        return listing;
    };
    const Listing usual = list(SmallMachine());
    const Listing full = list(WithOtherNames(R"(\\Device)"));
    EXPECT_EQ(full.size(), usual.size() + 300);
    EXPECT_EQ(std::set(full.begin(), full.end()).size(), full.size()) << "all different";
    EXPECT_EQ(LongerThan(usual, 100), 0u);
    EXPECT_EQ(LongerThan(full, 100), 100u);
    EXPECT_FALSE(std::is_sorted(full.begin(), full.end()));
    for (const auto& entry : usual) {
        EXPECT_NE(std::find(full.begin(), full.end(), entry), full.end());
    }
    EXPECT_FALSE(std::is_sorted(full.begin(), full.end(), [&](const auto& left, const auto& right) {
        return std::find(usual.begin(), usual.end(), left) < std::find(usual.begin(), usual.end(), right);
    })) << "the usual entries are no block";
    EXPECT_EQ(list(WithOtherNames(R"(\\Device)")), full) << "the same at each run";
}

TEST(NativeDirectory, OtherNamesInGlobal_AreDosDevicesToo) {
    Machine machine(WithOtherNames(R"(\\GLOBAL??)"));
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\GLOBAL??", &directory), kDone);
    const Listing listing = ListAll(native, directory);
    EXPECT_EQ(native.close(directory), kDone);
    EXPECT_TRUE(Contains(listing, L"C:", L"SymbolicLink"));
    EXPECT_EQ(LongerThan(listing, 100), 100u);
    for (const auto& [name, type] : listing) {
        EXPECT_EQ(type, L"SymbolicLink");
        EXPECT_EQ(name.find(L'\\'), std::wstring::npos);
        wchar_t target[200];
        EXPECT_GT(machine.kernel.QueryDosDeviceW(name.c_str(), target, 200), 0u);
    }
}

TEST(NativeDirectory, OtherNamesWithoutDerivedEntries_AreRefused) {
    EXPECT_THROW(Parse(R"({"directories": {"\\KernelObjects": {"otherNames": 3}}})"),
                 machine::DescriptionError);
    EXPECT_THROW(Parse(R"({"directories": {"\\Device": {"otherNames": 3, "entries": []}}})"),
                 machine::DescriptionError);
}

TEST(NativeDirectory, DeviceOfADirectoryBelow_IsListedThere) {
    Machine machine(R"({"volumes": [{"guid": null, "device": "\\Device\\Sample\\Volume7", "extents": []},
                                    {"guid": null, "device": "\\Device\\Sample\\Volume8", "extents": []}]})");
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory), kDone);
    const Listing listing = ListAll(native, directory);
    EXPECT_EQ(native.close(directory), kDone);
    EXPECT_TRUE(Contains(listing, L"Sample", L"Directory"));
    EXPECT_FALSE(Contains(listing, L"Volume7", L"Device"));
    ASSERT_EQ(native.Open(L"\\Device\\Sample", &directory), kDone);
    EXPECT_EQ(ListAll(native, directory), (Listing{{L"Volume7", L"Device"}, {L"Volume8", L"Device"}}));
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeDirectory, Device_ListsTheVolumesAmongOthers) {
    Machine machine(SmallMachine());
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory), kDone);
    const Listing listing = ListAll(native, directory);
    EXPECT_TRUE(Contains(listing, L"HarddiskVolume1", L"Device"));
    EXPECT_TRUE(Contains(listing, L"HarddiskVolume3", L"Device"));
    EXPECT_TRUE(Contains(listing, L"CdRom0", L"Device"));
    EXPECT_TRUE(Contains(listing, L"Harddisk3", L"Directory"));
    EXPECT_TRUE(Contains(listing, L"KsecDD", L"Device"));
    EXPECT_EQ(native.close(directory), kDone);
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

TEST(NativeDirectory, Global_ListsTheLinks) {
    Machine machine(SmallMachine());
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\global??", &directory), kDone);
    const Listing listing = ListAll(native, directory);
    EXPECT_TRUE(Contains(listing, L"Volume{00000000-0000-0000-0000-000000000002}", L"SymbolicLink"));
    EXPECT_TRUE(Contains(listing, L"C:", L"SymbolicLink"));
    EXPECT_TRUE(Contains(listing, L"PhysicalDrive3", L"SymbolicLink"));
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeDirectory, UnlinkedVolume_HasNoLink) {
    Machine machine(R"({"volumes": [{"guid": "{00000000-0000-0000-0000-000000000001}", "extents": [],
                        "linked": false}]})");
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\GLOBAL??", &directory), kDone);
    EXPECT_FALSE(Contains(ListAll(native, directory), L"Volume{00000000-0000-0000-0000-000000000001}",
                          L"SymbolicLink"));
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeDirectory, Entry_LiesInTheBufferBehindAZeroRecord) {
    Machine machine(R"({"directories": {"\\Device": {"entries": ["HarddiskVolume1"]}}})");
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory), kDone);
    alignas(8) unsigned char buffer[256];
    memset(buffer, 0xAA, sizeof(buffer));
    ULONG context = 77;
    ULONG returned = 0;
    ASSERT_EQ(native.query(directory, buffer, sizeof(buffer), TRUE, TRUE, &context, &returned), kDone);
    EXPECT_EQ(context, 1u);
    EXPECT_EQ(returned, 2 * sizeof(Record) + 32 + 14);
    const auto* records = reinterpret_cast<const Record*>(buffer);
    EXPECT_EQ(records[0].name.Length, 30);
    EXPECT_EQ(records[0].name.MaximumLength, 32);
    EXPECT_EQ(reinterpret_cast<unsigned char*>(records[0].name.Buffer), buffer + 2 * sizeof(Record));
    EXPECT_STREQ(records[0].name.Buffer, L"HarddiskVolume1");
    EXPECT_STREQ(records[0].type.Buffer, L"Device");
    EXPECT_EQ(records[1].name.Length, 0);
    EXPECT_EQ(records[1].name.Buffer, nullptr);
    EXPECT_EQ(native.query(directory, buffer, sizeof(buffer), TRUE, FALSE, &context, &returned),
              kNoMoreEntries);
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeDirectory, BufferTooSmall_TellsTheNeededLengthAndStays) {
    Machine machine(R"({"directories": {"\\Device": {"entries": ["HarddiskVolume1"]}}})");
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory), kDone);
    alignas(8) unsigned char buffer[256];
    ULONG context = 0;
    ULONG returned = 0;
    const ULONG needed = 2 * sizeof(Record) + 32 + 14;
    EXPECT_EQ(native.query(directory, buffer, needed - 1, TRUE, TRUE, &context, &returned), kTooSmall);
    EXPECT_EQ(returned, needed);
    EXPECT_EQ(native.query(directory, buffer, needed, TRUE, FALSE, &context, &returned), kDone);
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeDirectory, SeveralEntries_AreGivenWhenAskedFor) {
    Machine machine(
        R"({"directories": {"\\Device": {"entries": ["A", {"name": "B", "type": "Directory"}, "C"]}}})");
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory), kDone);
    alignas(8) unsigned char buffer[256];
    ULONG context = 0;
    ASSERT_EQ(native.query(directory, buffer, 160, FALSE, TRUE, &context, nullptr), kMoreEntries);
    EXPECT_EQ(context, 2u);
    const auto* records = reinterpret_cast<const Record*>(buffer);
    EXPECT_STREQ(records[1].name.Buffer, L"B");
    EXPECT_STREQ(records[1].type.Buffer, L"Directory");
    ASSERT_EQ(native.query(directory, buffer, 160, FALSE, FALSE, &context, nullptr), kDone);
    EXPECT_STREQ(records[0].name.Buffer, L"C");
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeDirectory, OpenFailures_HaveTheirStatus) {
    Machine machine(
        R"({"directories": {"\\GLOBAL??": {"errors": {"ZwOpenDirectoryObject": "0xC0000022"}}}})");
    const Native native;
    HANDLE directory = nullptr;
    EXPECT_EQ(native.Open(L"\\Nowhere", &directory), kNotFound);
    EXPECT_EQ(native.Open(L"Device", &directory), kPathSyntaxBad);
    EXPECT_EQ(native.Open(L"\\Device", &directory, 1, 40), kInvalidParameter);
    EXPECT_EQ(native.Open(L"\\GLOBAL??", &directory), kAccessDenied);
    EXPECT_EQ(directory, nullptr);
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

TEST(NativeDirectory, ClosedHandle_IsInvalid) {
    Machine machine(SmallMachine());
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory), kDone);
    EXPECT_EQ(native.close(directory), kDone);
    EXPECT_EQ(native.close(directory), kInvalidHandle);
    unsigned char buffer[256];
    ULONG context = 0;
    EXPECT_EQ(native.query(directory, buffer, sizeof(buffer), TRUE, TRUE, &context, nullptr), kInvalidHandle);
    EXPECT_EQ(machine.simulation.stale_handle_uses(), 2u);
}

TEST(NativeDirectory, WithoutQueryAccess_IsDenied) {
    Machine machine(SmallMachine());
    const Native native;
    HANDLE directory = nullptr;
    ASSERT_EQ(native.Open(L"\\Device", &directory, 2), kDone);
    unsigned char buffer[256];
    ULONG context = 0;
    EXPECT_EQ(native.query(directory, buffer, sizeof(buffer), TRUE, TRUE, &context, nullptr), kAccessDenied);
    EXPECT_EQ(native.close(directory), kDone);
}

TEST(NativeClose, RealHandle_ReachesTheSystem) {
    Machine machine(SmallMachine());
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const Native native;
    EXPECT_EQ(native.close(event), kDone);
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(event, &flags));
}

}  // namespace
}  // namespace machine_test
