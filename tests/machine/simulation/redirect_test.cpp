#include "machine/simulation/redirect.h"

#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace machine_test {
namespace {

HMODULE Kernel32() {
    return GetModuleHandleW(L"kernel32.dll");
}

DWORD WINAPI FakeTickCount() {
    return 4711;
}

// A separate function, because the compiler treats an import's address as constant and reads it once per
// function.
[[gnu::noinline]] DWORD Ticks() {
    return GetTickCount();
}

TEST(RedirectImport, ImportedFunction_IsReplacedUntilPutBack) {
    const HMODULE self = GetModuleHandleW(nullptr);
    const auto fake = reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&FakeTickCount));
    const FARPROC previous = machine::RedirectImport(self, "GetTickCount", fake);
    ASSERT_NE(previous, nullptr);
    EXPECT_EQ(Ticks(), 4711u);
    EXPECT_EQ(machine::RedirectImport(self, "GetTickCount", previous), fake);
    EXPECT_NE(Ticks(), 4711u);
}

TEST(RedirectImport, FunctionThatIsNotImported_GivesNull) {
    EXPECT_EQ(machine::RedirectImport(GetModuleHandleW(nullptr), "NoSuchFunction", nullptr), nullptr);
    EXPECT_EQ(machine::RedirectImport(nullptr, "GetTickCount", nullptr), nullptr);
}

TEST(PutModuleOnSimulation, GetProcAddress_FindsTheSimulatedFunctions) {
    const HMODULE self = GetModuleHandleW(nullptr);
    ASSERT_TRUE(machine::PutModuleOnSimulation(self));
    Machine machine(SmallMachine());
    EXPECT_NE(GetProcAddress(Kernel32(), "CreateFileW"), machine::RealProcAddress(Kernel32(), "CreateFileW"));
    EXPECT_EQ(GetProcAddress(Kernel32(), "CreateFileW"),
              machine::SimulatedProcAddress(Kernel32(), "CreateFileW"));
    EXPECT_EQ(GetProcAddress(Kernel32(), "GetSystemDirectoryW"),
              machine::RealProcAddress(Kernel32(), "GetSystemDirectoryW"));
    machine::RedirectImport(self, "GetProcAddress", machine::RealProcAddress(Kernel32(), "GetProcAddress"));
}

TEST(SimulatedProcAddress, MissingFunction_IsNotFound) {
    Machine machine(R"({"missing": ["GetFirmwareType", "CreateHardLinkW"]})");
    SetLastError(0);
    EXPECT_EQ(machine::SimulatedProcAddress(Kernel32(), "GetFirmwareType"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
    EXPECT_EQ(machine::SimulatedProcAddress(Kernel32(), "CreateHardLinkW"), nullptr);
    EXPECT_NE(machine::SimulatedProcAddress(Kernel32(), "GetFirmwareEnvironmentVariableW"), nullptr);
    EXPECT_EQ(machine.simulation.calls().Count("GetProcAddress", L"GetFirmwareType"), 1u);
}

TEST(SimulatedProcAddress, OtherModulesAndOrdinals_AreTheSystems) {
    Machine machine(R"({"missing": ["RegCloseKey"]})");
    const HMODULE advapi = LoadLibraryW(L"advapi32.dll");
    ASSERT_NE(advapi, nullptr);
    EXPECT_EQ(machine::SimulatedProcAddress(advapi, "RegCloseKey"),
              machine::RealProcAddress(advapi, "RegCloseKey"));
    FreeLibrary(advapi);
}

TEST(SimulatedProcAddress, WithoutSimulation_TheFunctionsReachTheSystem) {
    const Kernel kernel;
    ASSERT_EQ(machine::Simulation::Current(), nullptr);
    EXPECT_EQ(kernel.GetLogicalDrives(), ::GetLogicalDrives());
    EXPECT_EQ(kernel.GetDriveTypeW(L"C:\\"), ::GetDriveTypeW(L"C:\\"));
    EXPECT_EQ(kernel.CreateFileW(L"\\\\.\\NoSuchDevice", 0, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
}

TEST(Simulation, SecondOne_IsRefused) {
    Machine machine("{}");
    EXPECT_THROW(machine::Simulation second(Parse("{}")), std::logic_error);
    EXPECT_EQ(machine::Simulation::Current(), &machine.simulation);
}

TEST(Simulation, AfterItsEnd_AnotherMayBecomeCurrent) {
    { Machine first("{}"); }
    EXPECT_EQ(machine::Simulation::Current(), nullptr);
    Machine second("{}");
    EXPECT_EQ(machine::Simulation::Current(), &second.simulation);
}

}  // namespace
}  // namespace machine_test
