#pragma once

#include "machine/description/description.h"

#include <cstdint>
#include <string>
#include <vector>

namespace recorder {

using machine::Bytes;

// One question to the system. It opens what it needs and closes it again, so that each question can be asked
// alone.
struct Question {
    std::string call;          // "GetDriveTypeW", "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO"
    std::wstring object;       // "\\.\PhysicalDrive0", "\Device", "Win32_Processor"; empty: the machine
    std::uint32_t access = 0;  // with which a device is opened: 0 or GENERIC_READ
    std::uint32_t size = 0;    // of the buffer, in bytes or, for texts, in characters

    bool operator==(const Question&) const = default;
};

// One element of an answer that has several: a name in a listing, a member of a structure, a property.
struct Part {
    std::uint32_t instance = 0;  // the object of a WMI class, from 0
    std::wstring name;
    std::wstring type;        // of a directory entry or of a property ("VT_BSTR")
    std::uint32_t error = 0;  // the HRESULT with which the property cannot be read
    std::uint64_t value = 0;  // a number
    Bytes bytes;              // any other value; texts in UTF-16

    bool operator==(const Part&) const = default;
};

struct Answer {
    bool blocks = false;         // it did not come in time
    bool crashed = false;        // the process that asked ended; `error` is its exit code
    std::string step;            // the call that failed, if it is not the one that the question names
    std::uint32_t error = 0;     // Win32 error, NTSTATUS or HRESULT; 0: success
    std::uint64_t value = 0;     // the result: a drive type, a mask, a number of instances
    std::uint64_t returned = 0;  // the length that the system told
    Bytes bytes;                 // what the buffer held; never more than the question's size
    std::vector<Part> parts;

    bool operator==(const Answer&) const = default;
    bool succeeded() const { return !blocks && !crashed && error == 0; }
};

struct Observation {
    Question question;
    Answer answer;
};

}  // namespace recorder
