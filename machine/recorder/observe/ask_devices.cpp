#include "machine/recorder/observe/ask_calls.h"
#include "machine/recorder/observe/reading_controls.h"

#include <stdexcept>

namespace recorder {
namespace {

class OpenedDevice {
public:
    OpenedDevice(const SystemFunctions& functions, const Question& question) : functions_(functions) {
        if (functions.CreateFileW == nullptr) {
            SetLastError(ERROR_PROC_NOT_FOUND);
            return;
        }
        // As the library opens volumes: with this flag a drive that leads to a folder opens too.
        handle_ = functions.CreateFileW(question.object.c_str(), question.access & GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    }
    ~OpenedDevice() {
        if (is_open() && functions_.CloseHandle != nullptr) {
            functions_.CloseHandle(handle_);
        }
    }
    OpenedDevice(const OpenedDevice&) = delete;
    OpenedDevice& operator=(const OpenedDevice&) = delete;

    bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

private:
    const SystemFunctions& functions_;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace

Answer AskOpening(const SystemFunctions& functions, const Question& question) {
    const OpenedDevice device(functions, question);
    return device.is_open() ? Answer{} : Failure(LastFailure());
}

Answer AskControl(const SystemFunctions& functions, const Question& question) {
    const ReadingControl* control = FindReadingControl(question.call);
    if (control == nullptr) {
        throw std::invalid_argument(question.call + " is no question");
    }
    const OpenedDevice device(functions, question);
    if (!device.is_open()) {
        return Failure(LastFailure(), "CreateFileW");
    }
    if (functions.DeviceIoControl == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    Answer answer;
    Bytes buffer(question.size);
    DWORD returned = 0;
    if (functions.DeviceIoControl(device.get(), control->code, nullptr, 0,
                                  buffer.empty() ? nullptr : buffer.data(), static_cast<DWORD>(buffer.size()),
                                  &returned, nullptr) == FALSE) {
        answer.error = LastFailure();
    }
    answer.returned = returned;
    buffer.resize(std::min<std::size_t>(buffer.size(), returned));
    answer.bytes = std::move(buffer);
    return answer;
}

}  // namespace recorder
