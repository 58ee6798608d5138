#pragma once

#include "machine/description/control_codes.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace machine {

struct CallRecord {
    std::size_t ordinal = 0;  // 1 for the first call of the simulation
    CallFamily family = CallFamily::kWin32;
    std::string name;  // "CreateFileW", "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO", "IWbemClassObject::Get"
    std::wstring object;  // "\\.\PhysicalDrive0", "\Device\HarddiskVolume3", "Win32_Processor.Name"
    bool failed = false;
    std::uint32_t error = 0;  // Win32 error, NTSTATUS or HRESULT
    std::uint64_t value = 0;  // result or, if that is 0, number of bytes returned
};

// Every call that the simulation answered, in order.
class CallLog {
public:
    const std::vector<CallRecord>& records() const noexcept { return records_; }
    std::size_t size() const noexcept { return records_.size(); }

    // The number of calls with this name, with or without a suffix ("NAME" or "NAME:SUFFIX").
    std::size_t Count(const std::string& name) const;
    std::size_t Count(const std::string& name, const std::wstring& object) const;
    // The object of every call with this name, in order.
    std::vector<std::wstring> ObjectsOf(const std::string& name) const;

    // The names of all calls since the log was cleared, also of those that were not recorded.
    const std::set<std::string>& names() const noexcept { return names_; }

    // Removes the records and the names. Ordinals continue after the last one.
    void Clear() noexcept;

    // Turns recording on or off; long runs turn it off.
    void SetKept(bool kept) noexcept { kept_ = kept; }

    std::size_t NextOrdinal() noexcept { return ++last_ordinal_; }
    std::size_t last_ordinal() const noexcept { return last_ordinal_; }
    void Add(CallRecord record);

private:
    std::vector<CallRecord> records_;
    std::set<std::string> names_;
    std::size_t last_ordinal_ = 0;
    bool kept_ = true;
};

// True if `name` is `wanted`, or is `wanted` followed by a colon and a suffix.
bool IsCallNamed(const std::string& name, const std::string& wanted);

}  // namespace machine
