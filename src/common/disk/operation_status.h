#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
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

    // The names of all the queries that there will be. They are constants: the record keeps no copies.
    OperationStatus(std::initializer_list<std::wstring_view> names);
    virtual ~OperationStatus() = default;

    Operation& FindOperation(std::wstring_view name);
    const Operation& FindOperation(std::wstring_view name) const;
    Operation& SetSuccess(std::wstring_view name);
    void SetError(std::wstring_view name, const std::wstring& error);

    bool IsFailed(std::wstring_view name) const;
    bool IsSucceeded(std::wstring_view name) const;
    bool HasErrors() const;
    std::uint64_t ErrorCount() const;
    // Appends the error texts, in the order of the names.
    void GetErrors(std::vector<std::wstring>& errors) const;

    // One line for a record that was not attempted (level 4) or failed (level 2).
    static void DumpStatus(std::wstring_view name, const Operation& operation);
    void DumpAll() const;

private:
    using Entry = std::pair<std::wstring_view, Operation>;

    // Those that `wanted` picks, in the order of their names.
    template <class Wanted>
    std::vector<const Entry*> InOrder(Wanted&& wanted) const;

    // A handful, as they were given: there is one list for every volume and disk, and few are ever walked.
    std::vector<Entry> operations_;
};

}  // namespace bmr_common
