#pragma once

#include "common/platform/win_api_wrapper.h"
#include "support/each_of.h"
#include "support/stub.h"

#include <cstring>
#include <functional>
#include <vector>

// Replaces DeviceIoControl. Answers every control code with the same bytes, or with error 122 if the output
// buffer is too small, and records the requests. The public fields change its behaviour.
class ControlSystem {
public:
    struct Request {
        HANDLE device = nullptr;
        DWORD code = 0;
        std::vector<unsigned char> input;
        bool has_output = false;
        DWORD output_bytes = 0;
        bool overlapped = false;

        bool operator==(const Request&) const = default;
    };

    explicit ControlSystem(win::ByteBuffer given = {})
        : answer(std::move(given)),
          stub_(Kernel32DLL::Get().DeviceIoControl,
                [this](HANDLE device, DWORD code, void* input, DWORD input_bytes, void* output,
                       DWORD output_bytes, DWORD* returned, OVERLAPPED* overlapped) -> BOOL {
                    const auto* first = static_cast<const unsigned char*>(input);
                    requests.push_back({device,
                                        code,
                                        {first, first + (first == nullptr ? 0 : input_bytes)},
                                        output != nullptr,
                                        output_bytes,
                                        overlapped != nullptr});
                    return Answer(output, output_bytes, returned);
                }) {}

    std::vector<DWORD> output_sizes() const { return support::EachOf(requests, &Request::output_bytes); }

    win::ByteBuffer answer;
    DWORD claimed_bytes = 0;      // not 0: reported as the returned length
    DWORD always_fails_with = 0;  // not 0: the error of every call
    DWORD last_error_on_success = 0;
    std::vector<Request> requests;

private:
    BOOL Answer(void* output, DWORD output_bytes, DWORD* returned) const {
        *returned = claimed_bytes != 0 ? claimed_bytes : static_cast<DWORD>(answer.size());
        if (always_fails_with != 0 || output_bytes < answer.size()) {
            SetLastError(always_fails_with != 0 ? always_fails_with : DWORD{ERROR_INSUFFICIENT_BUFFER});
            return FALSE;
        }
        if (!answer.empty()) {
            std::memcpy(output, answer.data(), answer.size());
        }
        SetLastError(last_error_on_success);
        return TRUE;
    }

    using Function = decltype(Kernel32DLL::DeviceIoControl);
    support::Stub<Function, std::function<std::remove_pointer_t<Function>>> stub_;
};

// The bytes of a plain structure.
template <class Structure>
win::ByteBuffer BytesOf(const Structure& structure) {
    win::ByteBuffer bytes(sizeof(structure));
    std::memcpy(bytes.data(), &structure, sizeof(structure));
    return bytes;
}

// A drive layout with a partition count of `claimed` and with `held` entries.
win::ByteBuffer LayoutBytes(DWORD claimed, std::size_t held);
// An extent list with a count of `claimed` and with `held` extents.
win::ByteBuffer ExtentBytes(DWORD claimed, std::size_t held);
// A geometry with its partition record, followed by `more` bytes.
win::ByteBuffer GeometryBytes(std::size_t more);
