#include "common/disk/operation_status.h"

#include "common/logger/orvane_logger.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace bmr_common {

namespace {

void RequireInitial(const OperationStatus::Operation& operation, const wchar_t* line, const char* message) {
    if (operation.state != OperationStatus::kInitial) {
        GetLogger().Write(kLogError, line);
        throw std::logic_error(message);
    }
}

}  // namespace

OperationStatus::OperationStatus(std::initializer_list<std::reference_wrapper<const std::wstring>> names) {
    operations_.reserve(names.size());
    for (const std::wstring& name : names) {
        operations_.push_back({&name, Operation()});
    }
    std::sort(operations_.begin(), operations_.end(),
              [](const Entry& a, const Entry& b) { return *a.name < *b.name; });
}

const OperationStatus::Operation& OperationStatus::FindOperation(const std::wstring& name) const {
    const auto found = std::find_if(operations_.begin(), operations_.end(),
                                    [&](const auto& entry) { return *entry.name == name; });
    if (found == operations_.end()) {
        GetLogger().Write(kLogError,
                          L"OperationStatus::FindOperation - no operation '%s'. Code will throw exception.",
                          name.c_str());
        throw std::logic_error("OperationStatus::FindOperation - no such operation.");
    }
    return found->operation;
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

void OperationStatus::SetError(const std::wstring& name, std::wstring error) {
    Operation& operation = FindOperation(name);
    RequireInitial(operation,
                   L"OperationStatus::SetError - operation not in kInitial state. Code will throw exception.",
                   "OperationStatus::SetError - operation not in kInitial state.");
    operation.error = std::move(error);
    operation.state = kError;
}

bool OperationStatus::IsFailed(const std::wstring& name) const {
    return FindOperation(name).state == kError;
}

bool OperationStatus::IsSucceeded(const std::wstring& name) const {
    return FindOperation(name).state == kSuccess;
}

bool OperationStatus::HasErrors() const {
    return std::any_of(operations_.begin(), operations_.end(), HasFailed);
}

std::uint64_t OperationStatus::ErrorCount() const {
    return static_cast<std::uint64_t>(std::count_if(operations_.begin(), operations_.end(), HasFailed));
}

void OperationStatus::GetErrors(std::vector<std::wstring>& errors) const {
    for (const Entry& entry : operations_) {
        if (HasFailed(entry)) {
            errors.push_back(entry.operation.error);
        }
    }
}

void OperationStatus::DumpStatus(const std::wstring& name, const Operation& operation) {
    switch (operation.state) {
        case kInitial:
            // The wording is kept on purpose: compatibility C51
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
    for (const Entry& entry : operations_) {
        DumpStatus(*entry.name, entry.operation);
    }
}

}  // namespace bmr_common
