#include "common/disk/operation_status.h"

#include "common/logger/orvane_logger.h"

#include <algorithm>
#include <stdexcept>

namespace bmr_common {

namespace {

void RequireInitial(const OperationStatus::Operation& operation, const wchar_t* line, const char* message) {
    if (operation.state != OperationStatus::kInitial) {
        GetLogger().Write(kLogError, line);
        throw std::logic_error(message);
    }
}

bool HasFailed(const std::pair<std::wstring_view, OperationStatus::Operation>& entry) {
    return entry.second.state == OperationStatus::kError;
}

}  // namespace

template <class Wanted>
std::vector<const OperationStatus::Entry*> OperationStatus::InOrder(Wanted&& wanted) const {
    std::vector<const Entry*> entries;
    for (const Entry& entry : operations_) {
        if (wanted(entry)) {
            entries.push_back(&entry);
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry* a, const Entry* b) { return a->first < b->first; });
    return entries;
}

OperationStatus::OperationStatus(std::initializer_list<std::wstring_view> names) {
    operations_.reserve(names.size());
    for (const std::wstring_view name : names) {
        operations_.emplace_back(name, Operation());
    }
}

const OperationStatus::Operation& OperationStatus::FindOperation(std::wstring_view name) const {
    const auto found = std::find_if(operations_.begin(), operations_.end(),
                                    [&](const auto& entry) { return entry.first == name; });
    if (found == operations_.end()) {
        GetLogger().Write(kLogError,
                          L"OperationStatus::FindOperation - no operation '%s'. Code will throw exception.",
                          std::wstring(name).c_str());
        throw std::logic_error("OperationStatus::FindOperation - no such operation.");
    }
    return found->second;
}

OperationStatus::Operation& OperationStatus::FindOperation(std::wstring_view name) {
    const OperationStatus& self = *this;
    return const_cast<Operation&>(self.FindOperation(name));
}

OperationStatus::Operation& OperationStatus::SetSuccess(std::wstring_view name) {
    Operation& operation = FindOperation(name);
    RequireInitial(
        operation,
        L"OperationStatus::SetSuccess - operation not in kInitial state. Code will throw exception.",
        "OperationStatus::SetSuccess - operation not in kInitial state.");
    operation.state = kSuccess;
    operation.error.clear();
    return operation;
}

void OperationStatus::SetError(std::wstring_view name, const std::wstring& error) {
    Operation& operation = FindOperation(name);
    RequireInitial(operation,
                   L"OperationStatus::SetError - operation not in kInitial state. Code will throw exception.",
                   "OperationStatus::SetError - operation not in kInitial state.");
    operation.error = error;
    operation.state = kError;
}

bool OperationStatus::IsFailed(std::wstring_view name) const {
    return FindOperation(name).state == kError;
}

bool OperationStatus::IsSucceeded(std::wstring_view name) const {
    return FindOperation(name).state == kSuccess;
}

bool OperationStatus::HasErrors() const {
    return std::any_of(operations_.begin(), operations_.end(), HasFailed);
}

std::uint64_t OperationStatus::ErrorCount() const {
    return static_cast<std::uint64_t>(std::count_if(operations_.begin(), operations_.end(), HasFailed));
}

void OperationStatus::GetErrors(std::vector<std::wstring>& errors) const {
    for (const Entry* const entry : InOrder(HasFailed)) {
        errors.push_back(entry->second.error);
    }
}

void OperationStatus::DumpStatus(std::wstring_view name, const Operation& operation) {
    switch (operation.state) {
        case kInitial:
            GetLogger().Write(kLogInformation, L"operation %s has not attempted", std::wstring(name).c_str());
            break;
        case kError:
            GetLogger().Write(kLogError, L"operation %s failed - %s", std::wstring(name).c_str(),
                              operation.error.c_str());
            break;
        case kSuccess:
            break;
        default:
            GetLogger().Write(kLogError, L"operation %s status unknown", std::wstring(name).c_str());
            break;
    }
}

void OperationStatus::DumpAll() const {
    for (const Entry* const entry : InOrder([](const Entry&) { return true; })) {
        DumpStatus(entry->first, entry->second);
    }
}

}  // namespace bmr_common
