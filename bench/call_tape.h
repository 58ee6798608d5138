#pragma once

#include "common/windows.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

/// The system calls of one capture, with their arguments, to be made again without the library.
class CallTape {
public:
    /// Handles that the calls open, by their place on the tape.
    using Handles = std::vector<HANDLE>;
    using Call = std::function<void(Handles&)>;

    void Clear();
    void Add(Call call) { calls_.push_back(std::move(call)); }
    std::size_t size() const { return calls_.size(); }

    /// A place for a handle that a call has just opened.
    std::size_t PlaceOf(HANDLE opened);
    /// The place of a handle that is open.
    std::size_t Find(HANDLE handle) const;

    void Play() const;

private:
    std::vector<Call> calls_;
    std::vector<HANDLE> places_;
};

/// From now on the module's system calls go to `tape` too. The module must not have been called before.
void RecordCallsOf(HMODULE module, CallTape& tape);

}  // namespace bench
