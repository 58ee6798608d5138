#pragma once

#include "common/windows.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace machine {

// The object that a simulated handle refers to.
struct OpenObject {
    enum class Kind { kDisk, kVolume, kRootDirectory, kVolumeSearch, kObjectDirectory };

    Kind kind = Kind::kDisk;
    std::wstring name;         // name of the object in the call log
    std::uint32_t disk = 0;    // index of the disk
    std::wstring device;       // device name of the volume
    std::uint32_t access = 0;  // files: granted FILE_READ_DATA/FILE_WRITE_DATA; directories: requested access
    std::uint64_t position = 0;  // next entry of a search, or file position
};

// The open handles of a simulation. Their values never equal those of real handles and are not reused, so
// that every use of a closed handle is detected.
class HandleTable {
public:
    HANDLE Open(OpenObject object);

    // Returns null if the handle is not open. If its value is simulated, also counts a stale use.
    OpenObject* Find(HANDLE handle);

    // The same, but also returns null if the object is of another kind.
    OpenObject* Find(HANDLE handle, OpenObject::Kind kind);

    // Returns false if the handle is not open. If its value is simulated, also counts a stale use.
    bool Close(HANDLE handle);

    // True if the value is in the range of simulated handles, open or closed.
    static bool IsSimulated(HANDLE handle) noexcept;

    std::size_t open() const noexcept { return open_.size(); }
    std::size_t stale_uses() const noexcept { return stale_uses_; }

private:
    std::unordered_map<std::uintptr_t, OpenObject> open_;
    std::size_t stale_uses_ = 0;
};

}  // namespace machine
