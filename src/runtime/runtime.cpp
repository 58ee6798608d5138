// The library's entry point and memory allocation. An agent can load and unload the library any number of
// times without leaks.

#include "common/windows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

// The linker redirects malloc, related functions and two imports of the C++ runtime to the __wrap_ symbols.
extern "C" {
using TlsAllocFunction = DWORD(WINAPI*)();
using CreateSemaphoreFunction = HANDLE(WINAPI*)(SECURITY_ATTRIBUTES*, LONG, LONG, LPCWSTR);

BOOL WINAPI DllMainCRTStartup(HINSTANCE module, DWORD reason, LPVOID reserved);
BOOL WINAPI OrvaneEntry(HINSTANCE module, DWORD reason, LPVOID reserved);

void* LibraryMalloc(std::size_t size) __asm__("__wrap_malloc");
void* LibraryCalloc(std::size_t count, std::size_t size) __asm__("__wrap_calloc");
void* LibraryRealloc(void* block, std::size_t size) __asm__("__wrap_realloc");
void LibraryFree(void* block) __asm__("__wrap_free");

extern const TlsAllocFunction system_tls_alloc __asm__("__real___imp_TlsAlloc");
extern const CreateSemaphoreFunction system_create_semaphore __asm__("__real___imp_CreateSemaphoreW");
extern const TlsAllocFunction tls_alloc __asm__("__wrap___imp_TlsAlloc");
extern const CreateSemaphoreFunction create_semaphore __asm__("__wrap___imp_CreateSemaphoreW");
}

namespace {

// --- Memory: one heap for new and malloc, destroyed as a whole on unload.

// The initial heap size. A capture of the example workstation uses up to 150 KiB at a time, including the 72
// KiB that the C++ runtime keeps for exceptions.
constexpr std::size_t kFirstHeapBytes = std::size_t{192} * 1024;

constinit HANDLE heap = nullptr;

// The C++ runtime allocates up to three small blocks for the first exception of a thread. If it gets none, it
// terminates the process, which is the agent's. So malloc uses these blocks when the heap is exhausted.
struct alignas(std::max_align_t) ReserveBlock {
    std::array<unsigned char, 512> bytes;
};

constinit std::array<ReserveBlock, 64> reserve{};
constinit std::array<volatile LONG, 64> reserve_taken{};

ReserveBlock* TakeFromReserve(std::size_t size) {
    for (std::size_t i = 0; i < reserve.size() && size <= sizeof(ReserveBlock); ++i) {
        if (InterlockedExchange(&reserve_taken[i], TRUE) == FALSE) {
            return &reserve[i];
        }
    }
    return nullptr;
}

bool IsInReserve(const void* block) {
    const auto offset = reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(&reserve);
    return offset < sizeof(reserve);
}

void* AllocateFromHeap(std::size_t size) {
    return heap != nullptr ? HeapAlloc(heap, 0, size) : nullptr;
}

// --- Resources that the C++ runtime allocates after loading and never releases.

// The first exception allocates a thread slot and a semaphore, the first static object another semaphore.
// Without this code they would leak. The runtime itself releases what it allocates while it is being loaded.
// It creates two semaphores. If a later runtime creates more than eight, the faults' part `reload` fails.
constinit bool loaded = false;
constinit DWORD thread_slot = TLS_OUT_OF_INDEXES;
constinit std::array<HANDLE, 8> semaphores{};
constinit LONG semaphore_count = 0;

DWORD WINAPI TakeThreadSlot() {
    const DWORD slot = system_tls_alloc();
    if (loaded) {
        thread_slot = slot;
    }
    return slot;
}

HANDLE WINAPI CreateKeptSemaphore(SECURITY_ATTRIBUTES* attributes, LONG count, LONG most, LPCWSTR name) {
    HANDLE const semaphore = system_create_semaphore(attributes, count, most, name);
    if (loaded && semaphore != nullptr) {
        const auto index = static_cast<std::size_t>(InterlockedIncrement(&semaphore_count) - 1);
        if (index < semaphores.size()) {
            semaphores[index] = semaphore;
        }
    }
    return semaphore;
}

void GiveBack() {
    if (thread_slot != TLS_OUT_OF_INDEXES) {
        TlsFree(thread_slot);
    }
    for (HANDLE semaphore : semaphores) {
        if (semaphore != nullptr) {
            CloseHandle(semaphore);
        }
    }
    HeapDestroy(heap);
    heap = nullptr;
}

}  // namespace

const TlsAllocFunction tls_alloc = &TakeThreadSlot;
const CreateSemaphoreFunction create_semaphore = &CreateKeptSemaphore;

BOOL WINAPI OrvaneEntry(HINSTANCE module, DWORD reason, LPVOID reserved) {
    if (reason == DLL_PROCESS_ATTACH) {
        heap = HeapCreate(0, kFirstHeapBytes, 0);
    }
    if (heap == nullptr) {
        return FALSE;
    }
    const bool process_ends = reason == DLL_PROCESS_DETACH && reserved != nullptr;
    if (process_ends) {
        // From here on nothing is freed: a thread that the system has terminated may hold the heap lock
        // forever.
        heap = nullptr;
    }
    const BOOL result = DllMainCRTStartup(module, reason, reserved);
    loaded = true;
    if (reason == DLL_PROCESS_DETACH && !process_ends) {
        GiveBack();
    }
    return result;
}

void* LibraryMalloc(std::size_t size) {
    void* const block = AllocateFromHeap(size);
    return block != nullptr ? block : TakeFromReserve(size);
}

void* LibraryCalloc(std::size_t count, std::size_t size) {
    if (size != 0 && count > std::numeric_limits<std::size_t>::max() / size) {
        return nullptr;
    }
    void* const block = LibraryMalloc(count * size);
    return block != nullptr ? std::memset(block, 0, count * size) : nullptr;
}

void LibraryFree(void* block) {
    if (IsInReserve(block)) {
        InterlockedExchange(
            &reserve_taken[static_cast<std::size_t>(static_cast<ReserveBlock*>(block) - reserve.data())],
            FALSE);
    } else if (block != nullptr && heap != nullptr) {
        HeapFree(heap, 0, block);
    }
}

void* LibraryRealloc(void* block, std::size_t size) {
    if (block == nullptr) {
        return LibraryMalloc(size);
    }
    if (heap == nullptr) {
        return nullptr;
    }
    const std::size_t old_size = IsInReserve(block) ? sizeof(ReserveBlock) : HeapSize(heap, 0, block);
    void* const moved = LibraryMalloc(size);
    if (moved != nullptr) {
        std::memcpy(moved, block, std::min(size, old_size));
        LibraryFree(block);
    }
    return moved;
}

void* operator new(std::size_t size) {
    void* const block = AllocateFromHeap(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    LibraryFree(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    LibraryFree(block);
}
