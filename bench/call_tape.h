#pragma once

#include "common/windows.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace bench {

// Records the system calls of one capture with their arguments, and replays them without the library. Use it
// on one thread only.
class CallTape {
public:
    // The handles and buffers of the calls, allocated in advance: the replay of a call allocates nothing.
    struct Playback {
        std::vector<HANDLE> handles;  // opened by the calls, in the order of opening
        std::vector<std::uint64_t> scratch;

        // The output buffer of one call.
        template <class Element>
        Element* Answer() {
            return reinterpret_cast<Element*>(scratch.data());
        }
    };
    using Call = std::function<void(Playback&)>;

    void Clear();
    // Appends a call with an output of at most `answer_bytes` bytes.
    void Add(std::size_t answer_bytes, Call call);
    std::size_t size() const { return calls_.size(); }

    // Adds a handle that a call has just opened and returns its index.
    std::size_t PlaceOf(HANDLE opened);
    // The index of an open handle.
    std::size_t Find(HANDLE handle) const;

    void Play();

private:
    std::vector<Call> calls_;
    Playback playback_;
    std::vector<HANDLE> places_;
};

// Records the module's system calls on `tape` from now on. Call this before any function of the module.
void RecordCallsOf(HMODULE module, CallTape& tape);

}  // namespace bench
