// The first call after loading, which binds functions and initialises state for later calls; and loading
// itself.

#include "common/windows.h"
#include "faults/case_runner.h"

#include <algorithm>
#include <array>

namespace faults {

namespace {

// Loads the library and calls the entry point once. Memory runs out at allocation number `ordinal`.
std::vector<std::string> RunCold(machine::Simulation& simulation, const std::filesystem::path& file,
                                 const EntryPoint& entry, std::size_t ordinal, bool from_there_on,
                                 std::size_t& steps) {
    const Library library(file);
    ForgetRequests();
    const Balance before = Watch().balance;
    Meter& allocations = Watch().allocations;
    allocations.Arm(ordinal, from_there_on);
    std::uint32_t status = ORVANE_SUCCESS;
    if (entry.format != 0) {
        library.SetXmlFormat(entry.format);
        status = library.CaptureSystemRestorePointInfo(nullptr, 0, nullptr);
    } else {
        (library.*(entry.dump))();
    }
    steps = allocations.steps();
    const bool reached = ordinal == 0 || allocations.hits() != 0;
    allocations.Disarm();
    const Balance& after = Watch().balance;
    std::vector<std::string> breaches;
    const auto require = [&](bool holds, const char* name) {
        if (!holds) {
            breaches.emplace_back(name);
        }
    };
    require(reached, "not-reached");
    require(status <= ORVANE_BUFFER_TOO_SMALL, "status");
    require(simulation.open_handles() == 0 && simulation.stale_handle_uses() == 0, "handle");
    require(simulation.live_objects() == 0, "object");
    require(after.com_initialisations == before.com_initialisations, "com");
    require(after.registry_keys == before.registry_keys && after.tokens == before.tokens, "key");
    require(AskedOnlyWhatIsDocumented(entry), "request");
    return breaches;
}

void Append(std::vector<std::string>& failures, std::vector<std::string> more) {
    failures.insert(failures.end(), more.begin(), more.end());
}

// Bytes allocated in all heaps of the process.
std::size_t HeapBytes() {
    constexpr DWORD kMostHeaps = 64;
    std::array<HANDLE, kMostHeaps> heaps{};
    const DWORD count = GetProcessHeaps(kMostHeaps, heaps.data());
    std::size_t bytes = 0;
    for (DWORD i = 0; i < std::min(count, kMostHeaps); ++i) {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry) != FALSE) {
            bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        }
    }
    return bytes;
}

DWORD HeapCount() {
    return GetProcessHeaps(0, nullptr);
}

// The thread slot that the system allocates next.
DWORD NextThreadSlot() {
    const DWORD slot = TlsAlloc();
    TlsFree(slot);
    return slot;
}

// The largest of the next handles. The system allocates the smallest free handle numbers, so this grows when
// handles leak. Wine does not count the handles of a process.
std::uintptr_t NextHandles() {
    std::array<HANDLE, 64> handles{};
    for (HANDLE& handle : handles) {
        handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    }
    std::uintptr_t largest = 0;
    for (HANDLE handle : handles) {
        largest = std::max(largest, reinterpret_cast<std::uintptr_t>(handle));
        CloseHandle(handle);
    }
    return largest;
}

}  // namespace

void ColdStart(CaseRunner& runner, const std::filesystem::path& library,
               const machine::Description& description) {
    const EntryPoint& entry = FindEntryPoint(runner.choice().entry);
    machine::Session session(description);
    session.simulation().calls().SetKept(false);
    std::size_t count = 0;
    RunCold(session.simulation(), library, entry, 0, false, count);
    runner.tally().calls += count;
    for (std::size_t ordinal = 1; ordinal <= count; ++ordinal) {
        for (const bool from_there_on : {false, true}) {
            const std::string call = "alloc:" + std::to_string(ordinal);
            if ((runner.choice().call.empty() || runner.choice().call == call) &&
                runner.choice().from_there_on.value_or(from_there_on) == from_there_on) {
                std::size_t steps = 0;
                runner.Run("--call " + call + (from_there_on ? " --from-there-on" : " --once"),
                           "an allocation", [&] {
                               return RunCold(session.simulation(), library, entry, ordinal, from_there_on,
                                              steps);
                           });
            }
        }
    }
}

void Reload(CaseRunner& runner, const std::filesystem::path& library,
            const machine::Description& description) {
    constexpr std::size_t kWarmUp = 100;
    const std::size_t loads = runner.choice().loads;
    constexpr std::size_t kBytesOfNoise = 1024;  // noise of the test program itself
    const EntryPoint& entry = FindEntryPoint(runner.choice().entry);
    machine::Session session(description);
    session.simulation().calls().SetKept(false);
    runner.tally().calls += loads;
    runner.Run("", "loading", [&] {
        std::vector<std::string> failures;
        std::size_t steps = 0;
        std::size_t bytes = 0;
        std::uintptr_t handle = 0;
        DWORD slot = 0;
        DWORD heaps = 0;
        for (std::size_t i = 0; i < kWarmUp + loads; ++i) {
            if (i == kWarmUp) {
                bytes = HeapBytes();
                handle = NextHandles();
                heaps = HeapCount();
                slot = NextThreadSlot();
            }
            // Every second call throws an exception, for which the runtime keeps memory.
            Append(failures,
                   RunCold(session.simulation(), library, entry, i % 2 == 0 ? 0 : 60, false, steps));
        }
        const std::size_t bytes_after = HeapBytes();
        if (bytes_after > bytes + kBytesOfNoise) {
            failures.push_back("memory grew by " + std::to_string(bytes_after - bytes) + " bytes");
        }
        if (NextHandles() > handle) {
            failures.emplace_back("handles grew");
        }
        if (HeapCount() > heaps) {
            failures.push_back("heaps grew by " + std::to_string(HeapCount() - heaps));
        }
        if (NextThreadSlot() != slot) {
            failures.emplace_back("thread slots grew");
        }
        return failures;
    });
}

}  // namespace faults
