// Loading the library, and the functions that it looks up. Each test runs in its own process, because the
// library that the other tests share is already loaded and bound.

#include "common/windows.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"
#include "support/own_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

namespace {

std::set<std::string> looked_up;

std::string LowerCase(std::string text) {
    CharLowerBuffA(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

std::string FileNameOf(HMODULE module) {
    char path[MAX_PATH] = {};
    const std::string text(path, GetModuleFileNameA(module, path, MAX_PATH));
    return LowerCase(text.substr(text.rfind('\\') + 1));
}

FARPROC WINAPI NoteProcAddress(HMODULE module, LPCSTR name) {
    looked_up.insert(FileNameOf(module) + " " + name);
    return machine::SimulatedProcAddress(module, name);
}

std::set<std::string> BoundFunctions() {
    std::set<std::string> functions;
    std::ifstream file(ORVANE_SOURCE_DIR "/src/capture/exports/bound-functions.txt");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) {
            functions.insert(line);
        }
    }
    return functions;
}

template <class... Arguments>
void Call(HMODULE library, const char* name, Arguments... arguments) {
    const FARPROC function = machine::RealProcAddress(library, name);
    ASSERT_NE(function, nullptr) << name;
    reinterpret_cast<void (*)(Arguments...)>(reinterpret_cast<void (*)()>(function))(arguments...);
}

TEST(Loading, FunctionsLookedUpAtRunTime_AreThoseOfTheTable) {
    if (!support::InOwnProcess()) {
        return;
    }
    const machine::Session session(
        machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/bios-laptop"));
    const HMODULE library = LoadLibraryA(ORVANE_DLL_PATH);
    ASSERT_NE(library, nullptr);
    ASSERT_NE(
        machine::RedirectImport(library, "GetProcAddress",
                                reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&NoteProcAddress))),
        nullptr);
    for (const std::int32_t format : {1, 2, 3}) {
        Call(library, "SetXmlFormat", format);
        Call(library, "CaptureSystemRestorePointInfo", static_cast<char*>(nullptr), std::uint32_t{0},
             static_cast<std::uint32_t*>(nullptr));
    }
    for (const char* dump : {"WMIDumpInfo", "DiskDumpInfo", "VolumeDumpInfo", "FirmwareDumpInfo"}) {
        Call(library, dump);
    }
    const std::set<std::string> expected = BoundFunctions();
    EXPECT_EQ(expected.size(), 35U);  // fails when the file was not read
    EXPECT_THAT(looked_up, testing::ContainerEq(expected));
}

// During its lifetime, the system's HeapCreate returns null, as when out of memory.
class NoHeap {
public:
    NoHeap()
        : code_(reinterpret_cast<std::uint8_t*>(reinterpret_cast<std::uintptr_t>(
              machine::RealProcAddress(GetModuleHandleW(L"kernel32.dll"), "HeapCreate")))) {
        static constexpr std::uint8_t kReturnNull[] = {0x31, 0xC0, 0xC3};  // xor eax, eax; ret
        std::memcpy(original_, code_, sizeof(original_));
        Write(kReturnNull);
    }
    ~NoHeap() { Write(original_); }
    NoHeap(const NoHeap&) = delete;
    NoHeap& operator=(const NoHeap&) = delete;

private:
    void Write(const std::uint8_t (&bytes)[3]) {
        DWORD protection = 0;
        VirtualProtect(code_, sizeof(bytes), PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(code_, bytes, sizeof(bytes));
        VirtualProtect(code_, sizeof(bytes), protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), code_, sizeof(bytes));
    }

    std::uint8_t* code_;
    std::uint8_t original_[3] = {};
};

TEST(Loading, NoHeapOfItsOwn_FailsAndCanBeTriedAgain) {
    if (!support::InOwnProcess()) {
        return;
    }
    {
        const NoHeap no_heap;
        ASSERT_EQ(HeapCreate(0, 0, 0), nullptr);
        EXPECT_EQ(LoadLibraryA(ORVANE_DLL_PATH), nullptr);
    }
    const HMODULE library = LoadLibraryA(ORVANE_DLL_PATH);
    ASSERT_NE(library, nullptr);
    EXPECT_TRUE(FreeLibrary(library));
}

}  // namespace
