#include "machine/simulation/handle_table.h"

#include <utility>

namespace machine {
namespace {

// Far above the values that the kernel assigns, but within 32 bits like all real handles.
constexpr std::uintptr_t kFirst = 0x4A000000;
constexpr std::uintptr_t kLast = 0x7A000000;
constexpr std::uintptr_t kStep = 4;

// Process-wide, so that a handle left open by one simulation is stale in the next one and never refers to
// another object.
std::uintptr_t next_handle = kFirst;

}  // namespace

HANDLE HandleTable::Open(OpenObject object) {
    const std::uintptr_t value = next_handle;
    next_handle = value + kStep < kLast ? value + kStep : kFirst;
    open_.insert_or_assign(value, std::move(object));
    return reinterpret_cast<HANDLE>(value);
}

OpenObject* HandleTable::Find(HANDLE handle) {
    const auto found = open_.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == open_.end()) {
        stale_uses_ += IsSimulated(handle) ? 1 : 0;
        return nullptr;
    }
    return &found->second;
}

OpenObject* HandleTable::Find(HANDLE handle, OpenObject::Kind kind) {
    OpenObject* object = Find(handle);
    return object != nullptr && object->kind == kind ? object : nullptr;
}

bool HandleTable::Close(HANDLE handle) {
    if (open_.erase(reinterpret_cast<std::uintptr_t>(handle)) != 0) {
        return true;
    }
    stale_uses_ += IsSimulated(handle) ? 1 : 0;
    return false;
}

bool HandleTable::IsSimulated(HANDLE handle) noexcept {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    return value >= kFirst && value < kLast;
}

}  // namespace machine
