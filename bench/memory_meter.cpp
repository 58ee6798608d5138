#include "bench/memory_meter.h"

#include "machine/redirect.h"

#include <malloc.h>

#include <algorithm>
#include <stdexcept>

namespace bench {

namespace {

std::size_t held = 0;
std::size_t peak = 0;

void* __cdecl MeteredMalloc(std::size_t size) {
    void* const block = std::malloc(size);
    if (block != nullptr) {
        held += _msize(block);
        peak = std::max(peak, held);
    }
    return block;
}

void __cdecl MeteredFree(void* block) {
    // What was allocated before the meter came is no part of it.
    held -= block == nullptr ? 0 : std::min(held, _msize(block));
    std::free(block);
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
    Redirect(module, "malloc", &MeteredMalloc);
    Redirect(module, "free", &MeteredFree);
}

std::size_t PeakBytes() {
    const std::size_t result = peak;
    peak = held;
    return result;
}

}  // namespace bench
