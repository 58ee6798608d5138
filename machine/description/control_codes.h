#pragma once

#include "common/windows.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

// The kind of error code that a call returns.
enum class CallFamily { kWin32, kNative, kCom };

// The family of a call with this name.
CallFamily FamilyOf(std::string_view name);

// The error codes of failing calls, by call family.
struct FaultCodes {
    std::uint32_t win32 = 31;           // ERROR_GEN_FAILURE
    std::uint32_t native = 0xC0000001;  // STATUS_UNSUCCESSFUL
    std::uint32_t com = 0x80004005;     // E_FAIL

    std::uint32_t For(CallFamily family) const noexcept;
};

// The name of a control code ("IOCTL_DISK_GET_LENGTH_INFO"); hexadecimal for an unknown code.
std::string ControlName(DWORD code);

// The kinds of objects that can have described errors.
enum class CallScope : unsigned {
    kDisk = 1,
    kVolume = 2,
    kDirectory = 4,
    kWmiClass = 8,
    kDosDevice = 16,
    kMachine = 32
};

// A device control that can be described by its name.
struct NamedCode {
    DWORD code;
    std::string_view name;
};

// A call that can be described to fail.
struct NamedCall {
    std::string_view name;
    unsigned scopes;      // of CallScope, in addition to kMachine, which accepts every call
    bool blocks = false;  // does not return if the object does not answer
};

// All of them, in the order of the page that documents the format.
std::span<const NamedCode> NamedCodes();
std::span<const NamedCall> NamedCalls();

// The calls that do not return if an object of this kind does not answer.
std::vector<std::string> BlockingCalls(CallScope scope);

// The code with which the simulation answers a call that does not return: error 121, as its family has it.
std::uint32_t BlockedCode(const std::string& name);

// True if `name` is a call that can fail in this scope. The name may have a suffix: a colon and a control
// code.
bool IsCallOf(CallScope scope, const std::string& name);

}  // namespace machine
