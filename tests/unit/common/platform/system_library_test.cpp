#include "common/platform/system_library.h"

#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"
#include "support/each_of.h"
#include "support/logger_capture.h"
#include "support/own_process.h"
#include "support/stub.h"
#include "support/text.h"
#include "system_library_names.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using machine::Description;
using machine::Simulation;
using support::Error;
using support::LoggerCapture;
using support::StubImport;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

template <class Table>
constexpr bool kIsKernel = std::is_same_v<Table, Kernel32DLL>;

template <class Table>
const Names& MembersOf() {
    return kIsKernel<Table> ? kKernelMembers : kNtMembers;
}

template <class Table>
HMODULE LibraryOf() {
    return GetModuleHandleW(kIsKernel<Table> ? L"kernel32.dll" : L"ntdll.dll");
}

// The table's memory as pointers: one per member, in order, then the module.
template <class Table>
std::vector<const void*> PointersOf(const Table& table) {
    std::vector<const void*> pointers(sizeof(Table) / sizeof(void*));
    std::memcpy(pointers.data(), static_cast<const void*>(&table), sizeof(Table));
    return pointers;
}

// The expected members: null for every function that is not in `bound`. The module is not included.
template <class Table>
std::vector<const void*> Expected(const Names& bound) {
    std::vector<const void*> pointers;
    for (const std::string& name : MembersOf<Table>()) {
        const bool found = std::find(bound.begin(), bound.end(), name) != bound.end();
        pointers.push_back(found ? reinterpret_cast<const void*>(
                                       machine::SimulatedProcAddress(LibraryOf<Table>(), name.c_str()))
                                 : nullptr);
    }
    return pointers;
}

Names UpTo(const Names& order, const std::string& name) {
    return {order.begin(), std::find(order.begin(), order.end(), name)};
}

Names Without(Names names, const std::string& name) {
    names.erase(std::find(names.begin(), names.end(), name));
    return names;
}

Names LookedUp(Simulation& simulation) {
    return support::EachOf(simulation.calls().ObjectsOf("GetProcAddress"), support::Ansi);
}

Description Lacking(const std::string& function) {
    Description description;
    description.missing.insert(function);
    return description;
}

// Binds a table under a simulation, and records the log and the released modules.
template <class Table>
struct Bound {
    LoggerCapture log;
    std::vector<HMODULE> freed;
    Table table;
    std::vector<const void*> pointers;

    Bound() {
        const StubImport free("FreeLibrary", &::FreeLibrary, [this](HMODULE module) -> BOOL {
            freed.push_back(module);
            return TRUE;
        });
        table.Bind();
        pointers = PointersOf(table);
    }
};

template <class Table>
void ExpectWholeTable() {
    Simulation simulation{Description{}};
    const Bound<Table> bound;
    const Names looked_up = LookedUp(simulation);

    std::vector<const void*> expected = Expected<Table>(MembersOf<Table>());
    expected.push_back(LibraryOf<Table>());
    EXPECT_THAT(bound.pointers, ElementsAreArray(expected));
    EXPECT_THAT(looked_up, ElementsAreArray(kIsKernel<Table> ? kKernelBindingOrder : kNtBindingOrder));
    EXPECT_THAT(bound.log.all(), IsEmpty());
    EXPECT_THAT(bound.freed, IsEmpty());
}

TEST(Kernel32DLLBinding, Bind_NothingMissing_FillsTheMembersInTheirOrder) {
    ExpectWholeTable<Kernel32DLL>();
}

TEST(NtDLLBinding, Bind_NothingMissing_FillsTheMembersInTheirOrder) {
    ExpectWholeTable<NtDLL>();
}

template <class Table>
void ExpectStop(const std::string& missing, const Names& order, const std::string& prefix) {
    Simulation simulation(Lacking(missing));
    const Bound<Table> bound;
    Names looked_up = UpTo(order, missing);
    looked_up.push_back(missing);
    EXPECT_THAT(LookedUp(simulation), ElementsAreArray(looked_up));

    std::vector<const void*> expected = Expected<Table>(UpTo(order, missing));
    expected.push_back(nullptr);
    EXPECT_THAT(bound.pointers, ElementsAreArray(expected));
    EXPECT_THAT(bound.log.all(), ElementsAre(Error(prefix + missing + " failed error=0x7f")));
    EXPECT_THAT(bound.freed, ElementsAre(LibraryOf<Table>()));
}

class Kernel32DLLMissing : public testing::TestWithParam<std::string> {};

TEST_P(Kernel32DLLMissing, Bind_FunctionMissing_StopsThereAndReleasesTheModule) {
    ExpectStop<Kernel32DLL>(GetParam(), kKernelBindingOrder, "Kernel32DLL GetProcAddress of ");
}

INSTANTIATE_TEST_SUITE_P(EachButTheFirmwareFunctions, Kernel32DLLMissing,
                         testing::ValuesIn(Without(Without(kKernelBindingOrder, "GetFirmwareType"),
                                                   "GetFirmwareEnvironmentVariableW")),
                         [](const auto& tested) { return tested.param; });

class NtDLLMissing : public testing::TestWithParam<std::string> {};

TEST_P(NtDLLMissing, Bind_FunctionMissing_StopsThereAndReleasesTheModule) {
    ExpectStop<NtDLL>(GetParam(), kNtBindingOrder, "NtDLL GetProcAddress of ");
}

INSTANTIATE_TEST_SUITE_P(Each, NtDLLMissing, testing::ValuesIn(kNtBindingOrder),
                         [](const auto& tested) { return tested.param; });

TEST(Kernel32DLLBinding, Bind_NoFirmwareType_BindsTheRestWithoutAWord) {
    const Simulation simulation(Lacking("GetFirmwareType"));
    const Bound<Kernel32DLL> bound;

    std::vector<const void*> expected =
        Expected<Kernel32DLL>(Without(kKernelBindingOrder, "GetFirmwareType"));
    expected.push_back(LibraryOf<Kernel32DLL>());
    EXPECT_THAT(bound.pointers, ElementsAreArray(expected));
    EXPECT_THAT(bound.log.all(), IsEmpty());
    EXPECT_THAT(bound.freed, IsEmpty());
}

TEST(Kernel32DLLBinding, Bind_NoFirmwareVariables_LogsAndBindsTheRest) {
    const Simulation simulation(Lacking("GetFirmwareEnvironmentVariableW"));
    const Bound<Kernel32DLL> bound;

    std::vector<const void*> expected =
        Expected<Kernel32DLL>(Without(kKernelBindingOrder, "GetFirmwareEnvironmentVariableW"));
    expected.push_back(LibraryOf<Kernel32DLL>());
    EXPECT_THAT(bound.pointers, ElementsAreArray(expected));
    EXPECT_THAT(
        bound.log.all(),
        ElementsAre(Error("Kernel32DLL GetProcAddress of GetFirmwareEnvironmentVariable failed error=0x7f")));
    EXPECT_THAT(bound.freed, IsEmpty());
}

template <class Table>
void ExpectNoLibrary(const std::wstring& library, const std::string& line) {
    std::wstring asked;
    const StubImport load("LoadLibraryW", &::LoadLibraryW, [&](const wchar_t* name) -> HMODULE {
        asked = name;
        SetLastError(126);
        return nullptr;
    });
    const Bound<Table> bound;

    EXPECT_EQ(asked, library);
    EXPECT_THAT(bound.pointers, testing::Each(nullptr));
    EXPECT_THAT(bound.log.all(), ElementsAre(Error(line)));
    EXPECT_THAT(bound.freed, IsEmpty());
}

TEST(Kernel32DLLBinding, Bind_LibraryDoesNotLoad_LogsAndStaysNull) {
    ExpectNoLibrary<Kernel32DLL>(L"kernel32.dll", "Kernel32DLL LoadLibrary failed error=0x7e");
}

TEST(NtDLLBinding, Bind_LibraryDoesNotLoad_LogsAndStaysNull) {
    ExpectNoLibrary<NtDLL>(L"ntdll.dll", "NtDLL LoadLibrary failed error=0x7e");
}

// The number of times that a table's destructor releases the library.
template <class Table>
std::size_t ReleasedAtTheEnd(const Description& description) {
    const Simulation simulation(description);
    const LoggerCapture log;
    std::size_t released = 0;
    const StubImport free("FreeLibrary", &::FreeLibrary, [&](HMODULE) -> BOOL {
        ++released;
        return TRUE;
    });
    {
        Table table;
        table.Bind();
        released = 0;
    }
    return released;
}

TEST(Kernel32DLLBinding, Destruction_Bound_ReleasesTheModule) {
    EXPECT_EQ(ReleasedAtTheEnd<Kernel32DLL>({}), 1U);
    EXPECT_EQ(ReleasedAtTheEnd<NtDLL>({}), 1U);
}

TEST(Kernel32DLLBinding, Destruction_AfterAFailedBinding_ReleasesNothingTwice) {
    EXPECT_EQ(ReleasedAtTheEnd<Kernel32DLL>(Lacking("CreateFileW")), 0U);
    EXPECT_EQ(ReleasedAtTheEnd<NtDLL>(Lacking("ZwClose")), 0U);
}

TEST(Kernel32DLLBinding, Get_Twice_IsTheSameTableAndSilent) {
    Kernel32DLL& first = Kernel32DLL::Get();
    NtDLL& first_native = NtDLL::Get();
    Simulation simulation{Description{}};
    const LoggerCapture log;

    EXPECT_EQ(&Kernel32DLL::Get(), &first);
    EXPECT_EQ(&NtDLL::Get(), &first_native);

    EXPECT_THAT(log.all(), IsEmpty());
    EXPECT_THAT(LookedUp(simulation), IsEmpty());
    EXPECT_NE(first.CreateFileW, nullptr);
    EXPECT_NE(first_native.ZwClose, nullptr);
}

// Binds the process-wide table while one function is missing. Later calls must not bind it again, even when
// all functions exist.
template <class Table>
void ExpectNoSecondBinding(const std::string& missing, const Names& order, const std::string& prefix) {
    std::vector<const void*> expected = Expected<Table>(UpTo(order, missing));
    expected.push_back(nullptr);
    {
        const Simulation simulation(Lacking(missing));
        const LoggerCapture log;
        EXPECT_THAT(PointersOf(Table::Get()), ElementsAreArray(expected));
        EXPECT_THAT(log.all(), ElementsAre(Error(prefix + missing + " failed error=0x7f")));
    }
    Simulation simulation{Description{}};
    const LoggerCapture log;
    EXPECT_THAT(PointersOf(Table::Get()), ElementsAreArray(expected));
    EXPECT_THAT(LookedUp(simulation), IsEmpty());
    EXPECT_THAT(log.all(), IsEmpty());
}

TEST(Kernel32DLLBinding, Get_AfterAFailedBinding_DoesNotBindAgain) {
    if (!support::InOwnProcess()) {
        return;
    }
    ExpectNoSecondBinding<Kernel32DLL>("DeviceIoControl", kKernelBindingOrder,
                                       "Kernel32DLL GetProcAddress of ");
}

TEST(NtDLLBinding, Get_AfterAFailedBinding_DoesNotBindAgain) {
    if (!support::InOwnProcess()) {
        return;
    }
    ExpectNoSecondBinding<NtDLL>("ZwQueryDirectoryObject", kNtBindingOrder, "NtDLL GetProcAddress of ");
}

TEST(CallBound, FunctionThatIsThere_IsCalled) {
    int(WINAPI* const twice)(int) = [](int value) { return 2 * value; };
    EXPECT_EQ(CallBound(twice, -1, 21), 42);
}

TEST(CallBound, MissingFunction_AnswersForItWithTheProcedureNotFound) {
    int(WINAPI* const missing)(int) = nullptr;
    SetLastError(0);

    EXPECT_EQ(CallBound(missing, -1, 21), -1);

    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
}

}  // namespace
