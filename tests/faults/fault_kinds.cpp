#include "faults/fault_kinds.h"

namespace faults {

namespace {

// Win32 error, NTSTATUS, HRESULT.
constexpr FaultKind kKinds[] = {
    {"not-found", {2, 0xC0000034, 0x80041002}},
    {"access-denied", {5, 0xC0000022, 0x80070005}},
    {"not-ready", {21, 0xC00000A3, 0x80070015}},
    {"device-gone", {433, 0xC000000E, 0x80010108}},
    {"invalid-function", {1, 0xC0000010, 0x80004001}},
    {"more-data", {234, 0x80000005, 0x800700EA}},
    {"insufficient-buffer", {122, 0xC0000023, 0x8007007A}},
    {"out-of-memory", {14, 0xC0000017, 0x8007000E}},
};

}  // namespace

std::span<const FaultKind> FaultKinds() {
    return kKinds;
}

}  // namespace faults
