#include "machine/simulation/call_log.h"

#include "machine/description/text.h"

#include <algorithm>
#include <utility>

namespace machine {

bool IsCallNamed(const std::string& name, const std::string& wanted) {
    if (name.compare(0, wanted.size(), wanted) != 0) {
        return false;
    }
    // "::" belongs to the name ("X::Y"); only a single colon starts a suffix.
    return name.size() == wanted.size() ||
           (name[wanted.size()] == ':' && name.compare(wanted.size(), 2, "::") != 0);
}

std::size_t CallLog::Count(const std::string& name) const {
    return static_cast<std::size_t>(
        std::count_if(records_.begin(), records_.end(),
                      [&](const CallRecord& record) { return IsCallNamed(record.name, name); }));
}

std::size_t CallLog::Count(const std::string& name, const std::wstring& object) const {
    return static_cast<std::size_t>(
        std::count_if(records_.begin(), records_.end(), [&](const CallRecord& record) {
            return IsCallNamed(record.name, name) && EqualNames(record.object, object);
        }));
}

std::vector<std::wstring> CallLog::ObjectsOf(const std::string& name) const {
    std::vector<std::wstring> objects;
    for (const CallRecord& record : records_) {
        if (IsCallNamed(record.name, name)) {
            objects.push_back(record.object);
        }
    }
    return objects;
}

void CallLog::Clear() noexcept {
    records_.clear();
    names_.clear();
}

void CallLog::Add(CallRecord record) {
    names_.insert(record.name);
    if (kept_) {
        records_.push_back(std::move(record));
    }
}

}  // namespace machine
