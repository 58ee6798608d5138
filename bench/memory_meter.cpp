#include "bench/memory_meter.h"

#include "machine/simulation/redirect.h"

#include <algorithm>
#include <stdexcept>

namespace bench {

namespace {

std::size_t held = 0;
std::size_t base = 0;  // `held` at the last call of PeakBytes()
std::size_t peak = 0;

void* WINAPI MeteredHeapAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
    void* const block = HeapAlloc(heap, flags, size);
    if (block != nullptr) {
        held += HeapSize(heap, 0, block);
        peak = std::max(peak, held);
    }
    return block;
}

BOOL WINAPI MeteredHeapFree(HANDLE heap, DWORD flags, void* block) {
    // The block may have been allocated before metering began.
    held -= block == nullptr ? 0 : std::min(held, HeapSize(heap, 0, block));
    return HeapFree(heap, flags, block);
}

template <class Function>
void Redirect(HMODULE module, const char* name, Function function) {
    if (machine::RedirectImport(
            module, name, reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function))) == nullptr) {
        throw std::runtime_error("the library's memory cannot be metered");
    }
}

}  // namespace

void MeterMemoryOf(HMODULE module) {
    Redirect(module, "HeapAlloc", &MeteredHeapAlloc);
    Redirect(module, "HeapFree", &MeteredHeapFree);
}

std::size_t PeakBytes() {
    const std::size_t result = peak - base;
    base = held;
    peak = held;
    return result;
}

}  // namespace bench
