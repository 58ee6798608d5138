#include "common/platform/device_control.h"

namespace win {

namespace {

// Whether `buffer` is large enough for a header of `header_bytes` and `count` elements of `element_bytes`.
bool Holds(const ByteBuffer& buffer, std::size_t header_bytes, std::size_t count, std::size_t element_bytes) {
    return buffer.size() >= header_bytes && (buffer.size() - header_bytes) / element_bytes >= count;
}

}  // namespace

DWORD SendControl(const UniqueFile& device, DWORD code, void* input, std::size_t input_bytes, void* output,
                  std::size_t output_bytes, DWORD& returned_bytes) {
    returned_bytes = 0;
    return ErrorUnless(CallBound(Kernel32DLL::Get().DeviceIoControl, FALSE, device.get(), code, input,
                                 static_cast<DWORD>(input_bytes), output, static_cast<DWORD>(output_bytes),
                                 &returned_bytes, nullptr));
}

bool IsWholeGeometry(const ByteBuffer& buffer) {
    return Holds(buffer, offsetof(DISK_GEOMETRY_EX, Data), 1, sizeof(DISK_PARTITION_INFO));
}

bool IsWholeLayoutEx(const ByteBuffer& buffer) {
    constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    return buffer.size() >= kHeader &&
           Holds(buffer, kHeader,
                 reinterpret_cast<const DRIVE_LAYOUT_INFORMATION_EX*>(buffer.data())->PartitionCount,
                 sizeof(PARTITION_INFORMATION_EX));
}

bool IsWholeLegacyLayout(const ByteBuffer& buffer) {
    constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION, PartitionEntry);
    return buffer.size() >= kHeader &&
           Holds(buffer, kHeader,
                 reinterpret_cast<const DRIVE_LAYOUT_INFORMATION*>(buffer.data())->PartitionCount,
                 sizeof(PARTITION_INFORMATION));
}

bool IsWholeExtentList(const ByteBuffer& buffer) {
    constexpr std::size_t kHeader = offsetof(VOLUME_DISK_EXTENTS, Extents);
    return buffer.size() >= kHeader &&
           Holds(buffer, kHeader,
                 reinterpret_cast<const VOLUME_DISK_EXTENTS*>(buffer.data())->NumberOfDiskExtents,
                 sizeof(DISK_EXTENT));
}

}  // namespace win
