#include "machine/recorder/observe/ask_calls.h"

namespace recorder {
namespace {

constexpr DWORD kNameCharacters = 16384;  // the longest name of a value
constexpr DWORD kDataBytes = 1 << 20;

class OpenedKey {
public:
    explicit OpenedKey(const std::wstring& path)
        : status_(RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key_)) {}
    ~OpenedKey() {
        if (key_ != nullptr) {
            RegCloseKey(key_);
        }
    }
    OpenedKey(const OpenedKey&) = delete;
    OpenedKey& operator=(const OpenedKey&) = delete;

    HKEY get() const { return key_; }
    std::uint32_t status() const { return static_cast<std::uint32_t>(status_); }

private:
    HKEY key_ = nullptr;
    LSTATUS status_;
};

}  // namespace

Answer AskRegistryValues(const SystemFunctions& /*functions*/, const Question& question) {
    const OpenedKey key(question.object);
    if (key.status() != ERROR_SUCCESS) {
        return Failure(key.status(), "RegOpenKeyExW");
    }
    Answer answer;
    TextBuffer name(kNameCharacters);
    Bytes data(kDataBytes);
    for (DWORD i = 0; answer.parts.size() < kMostParts; ++i) {
        DWORD characters = kNameCharacters;
        DWORD bytes = kDataBytes;
        DWORD type = 0;
        const LSTATUS status =
            RegEnumValueW(key.get(), i, name.data(), &characters, nullptr, &type, data.data(), &bytes);
        if (status == ERROR_NO_MORE_ITEMS) {
            return answer;
        }
        if (status != ERROR_SUCCESS) {
            answer.error = static_cast<std::uint32_t>(status);
            return answer;
        }
        Part part;
        part.name.assign(name.data(), std::min(characters, kNameCharacters));
        part.value = type;
        part.bytes.assign(data.begin(), data.begin() + std::min(bytes, kDataBytes));
        answer.parts.push_back(std::move(part));
    }
    answer.error = ERROR_INVALID_DATA;
    return answer;
}

}  // namespace recorder
