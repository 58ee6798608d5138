#pragma once

#include "common/windows.h"
#include "faults/meter.h"
#include "machine/fault_plan.h"

#include <cstdint>

namespace faults {

// What the library holds of what it imports itself, beside the two bound tables.
struct Balance {
    std::int64_t heap_blocks = 0;
    std::int64_t com_initialisations = 0;
    std::int64_t registry_keys = 0;
    std::int64_t tokens = 0;

    bool operator==(const Balance&) const = default;
};

// The library's own imports under watch: memory (its heap, BSTRs), COM, registry,
// privileges and text conversion. One thread.
struct ImportWatch {
    Meter allocations;
    Meter imports;              // everything else
    machine::FaultCodes codes;  // how a failing one fails
    Balance balance;            // how it stands since the hooks were installed
};

ImportWatch& Watch();

// Puts the hooks under the module, for as long as it is loaded. Throws std::runtime_error when it does not
// import what is to be watched.
void InstallImportHooks(HMODULE module);

// Lets the GUIDs that the library makes begin anew: they are the same sequence each time.
void ResetGuids();

// While one lives, every larger block that the library allocates ends at a page that cannot be touched: one
// byte past the end is a crash.
class GuardedHeap {
public:
    GuardedHeap();
    ~GuardedHeap();
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;
};

}  // namespace faults
