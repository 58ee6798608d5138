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

}  // namespace

OperationStatus::OperationStatus(std::initializer_list<std::wstring> names) {
    for (const std::wstring& name : names) {
        operations_.try_emplace(name);
    }
}

const OperationStatus::Operation& OperationStatus::FindOperation(const std::wstring& name) const {
    const auto found = operations_.find(name);
    if (found == operations_.end()) {
        GetLogger().Write(kLogError,
                          L"OperationStatus::FindOperation - no operation '%s'. Code will throw exception.",
                          name.c_str());
        throw std::logic_error("OperationStatus::FindOperation - no such operation.");
    }
    return found->second;
}

OperationStatus::Operation& OperationStatus::FindOperation(const std::wstring& name) {
    const OperationStatus& self = *this;
    return const_cast<Operation&>(self.FindOperation(name));
}

OperationStatus::Operation& OperationStatus::SetSuccess(const std::wstring& name) {
    Operation& operation = FindOperation(name);
    RequireInitial(
        operation,
        L"OperationStatus::SetSuccess - operation not in kInitial state. Code will throw exception.",
        "OperationStatus::SetSuccess - operation not in kInitial state.");
    operation.state = kSuccess;
    operation.error.clear();
    return operation;
}

void OperationStatus::SetError(const std::wstring& name, const std::wstring& error) {
    Operation& operation = FindOperation(name);
    RequireInitial(operation,
                   L"OperationStatus::SetError - operation not in kInitial state. Code will throw exception.",
                   "OperationStatus::SetError - operation not in kInitial state.");
    operation.error = error;
    operation.state = kError;
}

bool OperationStatus::IsFailed(const std::wstring& name) const {
    return FindOperation(name).state == kError;
}

bool OperationStatus::IsSucceeded(const std::wstring& name) const {
    return FindOperation(name).state == kSuccess;
}

bool OperationStatus::HasErrors() const {
    return std::any_of(operations_.begin(), operations_.end(),
                       [](const auto& entry) { return entry.second.state == kError; });
}

std::uint64_t OperationStatus::ErrorCount() const {
    return static_cast<std::uint64_t>(
        std::count_if(operations_.begin(), operations_.end(),
                      [](const auto& entry) { return entry.second.state == kError; }));
}

void OperationStatus::GetErrors(std::vector<std::wstring>& errors) const {
    for (const auto& [name, operation] : operations_) {
        if (operation.state == kError) {
            errors.push_back(operation.error);
        }
    }
}

void OperationStatus::DumpStatus(const std::wstring& name, const Operation& operation) {
    switch (operation.state) {
        case kInitial:
            GetLogger().Write(kLogInformation, L"operation %s has not attempted", name.c_str());
            break;
        case kError:
            GetLogger().Write(kLogError, L"operation %s failed - %s", name.c_str(), operation.error.c_str());
            break;
        case kSuccess:
            break;
        default:
            GetLogger().Write(kLogError, L"operation %s status unknown", name.c_str());
            break;
    }
}

void OperationStatus::DumpAll() const {
    for (const auto& [name, operation] : operations_) {
        DumpStatus(name, operation);
    }
}

}  // namespace bmr_common
