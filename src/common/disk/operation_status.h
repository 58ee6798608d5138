#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace bmr_common {

// The results of an object's system queries, by name, so that one failed query does not abort the object.
// Each result can be set only once. Using an unknown name or setting a result twice is a programming error:
// logs at level 2, then throws std::logic_error.
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

    // The names of all queries. They must be constants: this object stores pointers to them.
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
    // Appends the error texts, sorted by query name.
    void GetErrors(std::vector<std::wstring>& errors) const;

    // Logs one line if the query was not attempted (level 4) or failed (level 2).
    static void DumpStatus(const std::wstring& name, const Operation& operation);
    void DumpAll() const;

private:
    struct Entry {
        const std::wstring* name = nullptr;
        Operation operation;
    };

    static bool HasFailed(const Entry& entry) { return entry.operation.state == kError; }

    std::vector<Entry> operations_;  // sorted by name: compatibility C52
};

}  // namespace bmr_common
