#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace bmr_common {

// The outcomes of an object's system queries by name, so that one failed query does not abort the object.
// Each record leaves kInitial at most once. Looking up an unknown name, or setting a record twice, is a
// programming error: logged at level 2, then thrown as std::logic_error.
class OperationStatus {
public:
    enum State : std::int32_t {
        kInitial = 0,  // not attempted yet
        kError = 1,
        kSuccess = 2,
    };

    struct Operation {
        std::int32_t state = kInitial;
        std::wstring error;  // empty unless the state is kError
    };

    // The names of all the queries that there will be: constants, which the record points to.
    OperationStatus(std::initializer_list<std::reference_wrapper<const std::wstring>> names);
    virtual ~OperationStatus() = default;

    Operation& FindOperation(const std::wstring& name);
    const Operation& FindOperation(const std::wstring& name) const;
    Operation& SetSuccess(const std::wstring& name);
    void SetError(const std::wstring& name, std::wstring error);

    bool IsFailed(const std::wstring& name) const;
    bool IsSucceeded(const std::wstring& name) const;
    bool HasErrors() const;
    std::uint64_t ErrorCount() const;
    // Appends the error texts, in the order of the names.
    void GetErrors(std::vector<std::wstring>& errors) const;

    // One line for a record that was not attempted (level 4) or failed (level 2).
    static void DumpStatus(const std::wstring& name, const Operation& operation);
    void DumpAll() const;

private:
    struct Entry {
        const std::wstring* name = nullptr;
        Operation operation;
    };

    static bool HasFailed(const Entry& entry) { return entry.operation.state == kError; }

    std::vector<Entry> operations_;  // in the order of the names: compatibility C52
};

}  // namespace bmr_common
