#include "capture/environment/boot_volumes.h"
#include "machine/session/session.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using support::Error;
using support::LogLine;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kControlKey[] = L"SYSTEM\\CurrentControlSet\\Control";
constexpr wchar_t kUntouched[] = L"untouched";

machine::RegistryValue Value(const wchar_t* name, std::wstring_view text, std::uint32_t type = REG_SZ) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return {name, type, {bytes, bytes + text.size() * sizeof(wchar_t)}};
}

machine::Description MachineWith(std::vector<machine::RegistryValue> values,
                                 const wchar_t* key = kControlKey) {
    machine::Description description = machine::ParseDescription("{}", "boot options");
    description.registry = {{key, std::move(values)}};
    return description;
}

struct Answer {
    bool result;
    std::wstring options;
    std::vector<LogLine> messages;
    std::vector<std::string> trace;
};

Answer BootOptionsOf(machine::Description description) {
    const machine::Session session(std::move(description));
    const support::LoggerCapture log;
    std::wstring options = kUntouched;
    const bool result = GetBootOptions(options);
    return {result, options, log.Messages(), log.Lines(support::kHostTrace)};
}

// --- Searching for the value.

TEST(GetBootOptions, TextWithItsTerminator_KeepsTheTerminator) {
    const Answer answer = BootOptionsOf(
        MachineWith({Value(L"SystemStartOptions", std::wstring_view(L" NOEXECUTE=OPTIN  FOO\0", 22))}));
    EXPECT_NE(answer.result, 0);
    EXPECT_EQ(answer.options, std::wstring(L" NOEXECUTE=OPTIN  FOO\0", 22));
    EXPECT_THAT(answer.messages, IsEmpty());
}

TEST(GetBootOptions, TextWithoutTerminator_IsTheTextAlone) {
    EXPECT_EQ(BootOptionsOf(MachineWith({Value(L"SystemStartOptions", L"DEBUG", REG_BINARY)})).options,
              L"DEBUG");
}

TEST(GetBootOptions, OddNumberOfBytes_IsHalvedDownwards) {
    machine::RegistryValue value = Value(L"SystemStartOptions", L"DEBUG", REG_BINARY);
    value.data.pop_back();
    EXPECT_EQ(BootOptionsOf(MachineWith({value})).options, L"DEBU");
}

TEST(GetBootOptions, EmptyValue_SucceedsWithAnEmptyText) {
    const Answer answer = BootOptionsOf(MachineWith({Value(L"SystemStartOptions", L"", REG_BINARY)}));
    EXPECT_NE(answer.result, 0);
    EXPECT_EQ(answer.options, L"");
}

TEST(GetBootOptions, OtherValues_AreWalkedPast) {
    const Answer answer = BootOptionsOf(MachineWith(
        {Value(L"CurrentUser", L"USERNAME"), Value(L"SystemStartOptionsOld", L"OLD"),
         Value(L"SystemStartOption", L"SHORT"), Value(L"SystemStartOptions", L"DEBUG"), Value(L"Z", L"")}));
    EXPECT_NE(answer.result, 0);
    EXPECT_EQ(answer.options, L"DEBUG");
}

TEST(GetBootOptions, LongestDataThatFits_IsRead) {
    const std::wstring longest(16383 / 2, L'x');
    EXPECT_EQ(BootOptionsOf(MachineWith({Value(L"SystemStartOptions", longest, REG_BINARY)})).options,
              longest);
}

class GetBootOptionsAbsent : public testing::TestWithParam<const wchar_t*> {};

TEST_P(GetBootOptionsAbsent, Value_IsReportedWithTheEndOfTheList) {
    const Answer answer = BootOptionsOf(MachineWith({Value(GetParam(), L"DEBUG")}));
    EXPECT_FALSE(answer.result);
    EXPECT_EQ(answer.options, kUntouched);
    EXPECT_THAT(answer.messages,
                ElementsAre(Error("GetBootOptions failed to find SystemStartOptions error=259")));
}

INSTANTIATE_TEST_SUITE_P(Names, GetBootOptionsAbsent,
                         testing::Values(L"Other", L"systemstartoptions", L"SystemStartOptions ",
                                         L"SystemStartOption"));

TEST(GetBootOptions, DataLongerThanTheBuffer_EndTheSearchWithTheirError) {
    const Answer answer =
        BootOptionsOf(MachineWith({Value(L"SystemStartOptions", std::wstring(8192, L'x'), REG_BINARY)}));
    EXPECT_FALSE(answer.result);
    EXPECT_EQ(answer.options, kUntouched);
    EXPECT_THAT(answer.messages,
                ElementsAre(Error("GetBootOptions failed to find SystemStartOptions error=234")));
}

TEST(GetBootOptions, NoKey_IsReported) {
    const Answer answer = BootOptionsOf(MachineWith({}, L"SYSTEM\\Select"));
    EXPECT_FALSE(answer.result);
    EXPECT_EQ(answer.options, kUntouched);
    EXPECT_THAT(answer.messages, ElementsAre(Error("GetBootOptions Failed to open registry")));
    EXPECT_THAT(answer.trace, testing::Not(testing::Contains("Function CloseKey")));
}

TEST(GetBootOptions, NoMemoryForTheBuffers_IsReportedAndTheKeyClosed) {
    const machine::Session session(MachineWith({Value(L"SystemStartOptions", L"DEBUG")}));
    const support::LoggerCapture log;
    std::wstring options = kUntouched;
    {
        const support::AllocationFailure failing(16383);  // bytes in the data buffer
        EXPECT_FALSE(GetBootOptions(options));
        EXPECT_GT(failing.hits(), 0U);
    }
    EXPECT_EQ(options, kUntouched);
    EXPECT_THAT(log.Messages(),
                ElementsAre(Error("GetBootOptions failed to find SystemStartOptions error=14")));
    EXPECT_THAT(log.all(), Contains(Trace("CRegistry::CloseKey res=0")));
}

TEST(GetBootOptions, EachAllocationFails_FailsOrReadsAllWithoutThrowing) {
    const machine::Session session(MachineWith({Value(L"SystemStartOptions", L"DEBUG=ON")}));
    std::size_t hits = 1;
    for (std::size_t allowed = 0; hits != 0; ++allowed) {
        ASSERT_LT(allowed, 50U);
        std::wstring options = kUntouched;
        bool result = false;
        EXPECT_NO_THROW({
            const auto failing = support::AllocationFailure::After(allowed);
            result = GetBootOptions(options);
            hits = failing.hits();
        }) << allowed;
        EXPECT_EQ(result, hits == 0) << allowed;
        EXPECT_EQ(options, hits == 0 ? L"DEBUG=ON" : kUntouched) << allowed;
    }
}

TEST(GetBootOptions, Privileges_AreEnabledFirst) {
    const machine::Session session(machine::ParseDescription("{}", "boot options"));
    int adjusted = 0;
    const support::StubImport adjust(
        "AdjustTokenPrivileges", &::AdjustTokenPrivileges,
        [&](HANDLE, BOOL, TOKEN_PRIVILEGES*, DWORD, TOKEN_PRIVILEGES*, DWORD*) -> BOOL {
            ++adjusted;
            return FALSE;
        });
    std::wstring options;
    EXPECT_TRUE(GetBootOptions(options));
    EXPECT_EQ(adjusted, 2);
}

}  // namespace
