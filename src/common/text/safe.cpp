#include "common/text/safe.h"

#include <cstring>
#include <functional>

namespace safe {

void MemoryCopy(void* destination, std::size_t destination_size, const void* source, std::size_t count) {
    const std::string name = "MemoryCopy";
    if (count == 0) {
        return;
    }
    if (destination == nullptr) {
        throw std::invalid_argument("Null pointer parameter 'dest' passed to " + name);
    }
    if (source == nullptr) {
        throw std::invalid_argument("Null pointer parameter 'src' passed to " + name);
    }
    if (destination_size < count) {
        throw std::length_error("Buffer overrun in " + name);
    }
    const auto* to = static_cast<const char*>(destination);
    const auto* from = static_cast<const char*>(source);
    const std::less<> before;  // a total order even for pointers into different objects
    if (before(to, from + count) && before(from, to + count)) {
        throw std::length_error("Source and destination are overlapping in " + name);
    }
    std::memcpy(destination, source, count);
}

}  // namespace safe
