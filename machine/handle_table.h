#pragma once

#include "common/windows.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace machine {

// What a simulated handle stands for.
struct OpenObject {
    enum class Kind { kDisk, kVolume, kRootDirectory, kVolumeSearch, kObjectDirectory };

    Kind kind = Kind::kDisk;
    std::wstring name;       // of the object, for the call log
    std::uint32_t disk = 0;  // index of the disk
    std::wstring device;     // device name of the volume
    std::uint32_t access =
        0;  // file handles: FILE_READ_DATA and FILE_WRITE_DATA as granted; directories: as asked
    std::uint64_t position = 0;  // next entry of a search, or file position
};

// The open handles of a simulation. Their values are never values of real handles, and none is used twice,
// so that every use of a closed one is noticed.
class HandleTable {
public:
    HANDLE Open(OpenObject object);

    // Null when the handle is not open; a simulated one is then counted as a stale use.
    OpenObject* Find(HANDLE handle);

    // The same, also null when the object is of another kind.
    OpenObject* Find(HANDLE handle, OpenObject::Kind kind);

    // False when it is not open.
    bool Close(HANDLE handle);

    // Whether the value is in the range of simulated handles, open or not.
    static bool IsSimulated(HANDLE handle) noexcept;

    std::size_t open() const noexcept { return open_.size(); }
    std::size_t stale_uses() const noexcept { return stale_uses_; }

private:
    std::unordered_map<std::uintptr_t, OpenObject> open_;
    std::size_t stale_uses_ = 0;
};

}  // namespace machine
