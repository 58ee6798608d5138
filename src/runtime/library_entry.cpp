// The library's entry point: the runtime's, and after its last run the clean-up that it leaves undone. An
// agent may load and unload the library as often as it likes.

#include "common/windows.h"
#include "runtime/runtime_memory.h"

#include <algorithm>
#include <array>
#include <cstddef>

extern "C" {
BOOL WINAPI DllMainCRTStartup(HINSTANCE module, DWORD reason, LPVOID reserved);
BOOL WINAPI OrvaneEntry(HINSTANCE module, DWORD reason, LPVOID reserved);
}

namespace {

using TlsAllocFunction = DWORD(WINAPI*)();
using CriticalSectionFunction = void(WINAPI*)(CRITICAL_SECTION*);

// What stands behind the runtime's imports.
struct SystemFunctions {
    TlsAllocFunction tls_alloc = nullptr;
    CriticalSectionFunction initialize_critical_section = nullptr;
    CriticalSectionFunction delete_critical_section = nullptr;
};

constinit SystemFunctions system_functions;

template <class Function>
void Find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

// Found at the first use, which may come before the entry point: the loader calls into the runtime earlier.
// No function of kernel32 that every Windows has is missed.
const SystemFunctions& System() {
    if (system_functions.delete_critical_section == nullptr) {
        Find(system_functions.tls_alloc, "TlsAlloc");
        Find(system_functions.initialize_critical_section, "InitializeCriticalSection");
        Find(system_functions.delete_critical_section, "DeleteCriticalSection");
    }
    return system_functions;
}

// A few things that the runtime takes from the system and does not give back. One that no longer fits is not
// remembered, and so left as the runtime leaves it.
template <class Thing>
class Remembered {
public:
    void Add(Thing thing) {
        if (count_ < things_.size()) {
            things_[count_++] = thing;
        }
    }

    void Remove(Thing thing) {
        auto* const end = things_.begin() + count_;
        auto* const found = std::find(things_.begin(), end, thing);
        if (found != end) {
            *found = things_[--count_];
        }
    }

    template <class Release>
    void ReleaseAll(Release&& release) {
        while (count_ > 0) {
            release(things_[--count_]);
        }
    }

private:
    std::array<Thing, 256> things_{};
    std::size_t count_ = 0;
};

constinit Remembered<DWORD> thread_slots;  // a process has about a thousand
constinit Remembered<CRITICAL_SECTION*> critical_sections;

DWORD WINAPI TakeThreadSlot() {
    const DWORD slot = System().tls_alloc();
    if (slot != TLS_OUT_OF_INDEXES) {
        thread_slots.Add(slot);
    }
    return slot;
}

void WINAPI InitializeRemembered(CRITICAL_SECTION* section) {
    System().initialize_critical_section(section);
    critical_sections.Add(section);
}

void WINAPI DeleteRemembered(CRITICAL_SECTION* section) {
    critical_sections.Remove(section);
    System().delete_critical_section(section);
}

void CleanUp() {
    thread_slots.ReleaseAll([](DWORD slot) { TlsFree(slot); });
    critical_sections.ReleaseAll(System().delete_critical_section);
    ReleaseMemory();
}

}  // namespace

// What the runtime finds in the place of its imports. One thread at a time calls the library.
extern "C" {
extern const TlsAllocFunction tls_alloc_import __asm__("__imp_TlsAlloc");
extern const CriticalSectionFunction initialize_import __asm__("__imp_InitializeCriticalSection");
extern const CriticalSectionFunction delete_import __asm__("__imp_DeleteCriticalSection");

const TlsAllocFunction tls_alloc_import = &TakeThreadSlot;
const CriticalSectionFunction initialize_import = &InitializeRemembered;
const CriticalSectionFunction delete_import = &DeleteRemembered;
}

BOOL WINAPI OrvaneEntry(HINSTANCE module, DWORD reason, LPVOID reserved) {
    System();
    const bool process_ends = reason == DLL_PROCESS_DETACH && reserved != nullptr;
    if (reason == DLL_PROCESS_ATTACH) {
        CreateLibraryHeap();
    }
    if (process_ends) {
        LeaveMemoryToTheSystem();
    }
    const BOOL result = DllMainCRTStartup(module, reason, reserved);
    // At the end of the process the system takes everything back by itself.
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr) {
        CleanUp();
    }
    return result;
}
