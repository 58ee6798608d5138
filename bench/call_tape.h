#pragma once

#include "common/windows.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace bench {

// The system calls of one capture, with their arguments, to be made again without the library. One thread.
class CallTape {
public:
    // What the calls are made with: nothing is made for a call while the tape plays.
    struct Playback {
        std::vector<HANDLE> handles;  // that the calls open, by their place on the tape
        std::vector<std::uint64_t> scratch;

        // For the answer of one call.
        template <class Element>
        Element* Answer() {
            return reinterpret_cast<Element*>(scratch.data());
        }
    };
    using Call = std::function<void(Playback&)>;

    void Clear();
    // A call whose answer needs so many bytes.
    void Add(std::size_t answer_bytes, Call call);
    std::size_t size() const { return calls_.size(); }

    // A place for a handle that a call has just opened.
    std::size_t PlaceOf(HANDLE opened);
    // The place of a handle that is open.
    std::size_t Find(HANDLE handle) const;

    void Play();

private:
    std::vector<Call> calls_;
    Playback playback_;
    std::vector<HANDLE> places_;
};

// From now on the module's system calls go to `tape` too. The module must not have been called before.
void RecordCallsOf(HMODULE module, CallTape& tape);

}  // namespace bench
