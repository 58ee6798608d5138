#include "control_system.h"

#include <cstddef>

namespace {

void PutCount(win::ByteBuffer& bytes, std::size_t offset, DWORD count) {
    std::memcpy(bytes.data() + offset, &count, sizeof(count));
}

}  // namespace

win::ByteBuffer LayoutBytes(DWORD claimed, std::size_t held) {
    win::ByteBuffer bytes(48 + 144 * held, 0x5A);
    PutCount(bytes, 4, claimed);
    return bytes;
}

win::ByteBuffer ExtentBytes(DWORD claimed, std::size_t held) {
    win::ByteBuffer bytes(8 + 24 * held, 0x5A);
    PutCount(bytes, 0, claimed);
    return bytes;
}

win::ByteBuffer GeometryBytes(std::size_t more) {
    return win::ByteBuffer(32 + 24 + more, 0x5A);
}
