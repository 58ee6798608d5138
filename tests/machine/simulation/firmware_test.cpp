#include "machine/simulation/disk_structures.h"
#include "machine/simulation/simulated_functions.h"
#include "machine/test_machine.h"

#include <gtest/gtest.h>

namespace machine_test {
namespace {

DWORD Probe(void* buffer, DWORD size) {
    SetLastError(0);
    return machine::simulated::GetFirmwareEnvironmentVariableW(L"", L"{00000000-0000-0000-0000-000000000000}",
                                                               buffer, size);
}

std::uint32_t TypeOf() {
    FIRMWARE_TYPE type{};
    EXPECT_TRUE(machine::simulated::GetFirmwareType(&type));
    return machine::NumberIn(type);
}

TEST(Firmware, Type_FollowsTheDisksUnlessGiven) {
    {
        Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr"}]})");
        EXPECT_EQ(TypeOf(), 1u);
    }
    {
        Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "gpt"}]})");
        EXPECT_EQ(TypeOf(), 2u);
    }
    {
        Machine machine(
            R"({"disks": [{"index": 0, "size": "1 GiB", "style": "gpt"}], "firmware": {"type": 7}})");
        EXPECT_EQ(TypeOf(), 7u);
    }
}

TEST(Firmware, BiosVariable_IsAnInvalidFunction) {
    Machine machine(R"({"firmware": {"type": "bios"}})");
    EXPECT_EQ(Probe(nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
}

TEST(Firmware, UefiVariable_RejectsTheNullBufferOrTheName) {
    Machine machine(R"({"firmware": {"type": "uefi"}})");
    EXPECT_EQ(Probe(nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOACCESS});
    unsigned char buffer[4];
    EXPECT_EQ(Probe(buffer, 4), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ENVVAR_NOT_FOUND});
}

TEST(Firmware, DescribedAnswers_AreGiven) {
    {
        Machine machine(R"({"firmware": {"variableError": 1314}})");
        EXPECT_EQ(Probe(nullptr, 0), 0u);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_PRIVILEGE_NOT_HELD});
    }
    {
        Machine machine(R"({"firmware": {"variableLength": 3}})");
        EXPECT_EQ(Probe(nullptr, 0), 3u);
    }
    {
        Machine machine(R"({"errors": {"GetFirmwareType": 50}})");
        FIRMWARE_TYPE type{};
        EXPECT_FALSE(machine::simulated::GetFirmwareType(&type));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
    }
}

}  // namespace
}  // namespace machine_test
