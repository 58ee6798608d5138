#pragma once

#include "common/windows.h"
#include "faults/meter.h"
#include "machine/simulation/fault_plan.h"

#include <cstdint>

namespace faults {

// The resources that the library holds through its own imports, apart from the two bound tables.
struct Balance {
    std::int64_t heap_blocks = 0;
    std::int64_t com_initialisations = 0;
    std::int64_t registry_keys = 0;
    std::int64_t tokens = 0;

    bool operator==(const Balance&) const = default;
};

// Watches the library's own imports: memory (its heap, BSTRs), COM, registry, privileges and text conversion.
// Single-threaded.
struct ImportWatch {
    Meter allocations;
    Meter imports;              // all imports except allocations
    machine::FaultCodes codes;  // error codes of a failing import
    Balance balance;            // counted since the hooks were installed
};

ImportWatch& Watch();

// Hooks the module's imports until it is unloaded. Throws std::runtime_error if the module does not import
// one of the functions.
void InstallImportHooks(HMODULE module);

// Restarts the sequence of the GUIDs that the library creates, which is the same each time.
void ResetGuids();

// While one lives, every larger block that the library allocates ends at a guard page. Access past its end
// crashes.
class GuardedHeap {
public:
    GuardedHeap();
    ~GuardedHeap();
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;
};

}  // namespace faults
