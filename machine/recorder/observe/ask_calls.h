#pragma once

#include "machine/recorder/observe/question.h"
#include "machine/recorder/observe/system_functions.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

// Shared by the functions that ask one question each.
namespace recorder {

// Limits a listing that does not end.
inline constexpr std::size_t kMostParts = 200'000;

Answer AskOpening(const SystemFunctions& functions, const Question& question);
Answer AskControl(const SystemFunctions& functions, const Question& question);

Answer AskDriveType(const SystemFunctions& functions, const Question& question);
Answer AskFreeSpace(const SystemFunctions& functions, const Question& question);
Answer AskFreeSpaceEx(const SystemFunctions& functions, const Question& question);
Answer AskVolumeInformation(const SystemFunctions& functions, const Question& question);

Answer AskVolumes(const SystemFunctions& functions, const Question& question);
Answer AskMountPaths(const SystemFunctions& functions, const Question& question);
Answer AskVolumeName(const SystemFunctions& functions, const Question& question);
Answer AskDosDevice(const SystemFunctions& functions, const Question& question);
Answer AskLogicalDrives(const SystemFunctions& functions, const Question& question);

Answer AskDirectory(const SystemFunctions& functions, const Question& question);
Answer AskFirmwareType(const SystemFunctions& functions, const Question& question);
Answer AskFirmwareVariable(const SystemFunctions& functions, const Question& question);

Answer AskWmiClass(const SystemFunctions& functions, const Question& question);
Answer AskWmiWithoutSecurity(const SystemFunctions& functions, const Question& question);
Answer AskXmlComponent(const SystemFunctions& functions, const Question& question);
Answer AskXmlText(const SystemFunctions& functions, const Question& question);
Answer AskRegistryValues(const SystemFunctions& functions, const Question& question);

inline Answer Failure(std::uint32_t error, std::string step = {}) {
    Answer answer;
    answer.error = error;
    answer.step = std::move(step);
    return answer;
}

// A call that failed without a last error is error 31.
inline std::uint32_t LastFailure() {
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? static_cast<DWORD>(ERROR_GEN_FAILURE) : error;
}

inline Bytes BytesOfText(std::wstring_view text) {
    const auto* first = reinterpret_cast<const std::uint8_t*>(text.data());
    return {first, first + text.size() * sizeof(wchar_t)};
}

// The buffer of a question about a text, with exactly the size that the system is told.
using TextBuffer = std::vector<wchar_t>;

// The text up to its terminator, which a wrong answer may lack.
inline std::wstring TextIn(const TextBuffer& buffer) {
    return {buffer.begin(), std::find(buffer.begin(), buffer.end(), L'\0')};
}

// The first `count` characters, or all if the system told more than the buffer holds.
inline Bytes BytesIn(const TextBuffer& buffer, std::size_t count) {
    return BytesOfText({buffer.data(), std::min(count, buffer.size())});
}

inline Part NumberPart(const wchar_t* name, std::uint64_t value) {
    Part part;
    part.name = name;
    part.value = value;
    return part;
}

inline Part TextPart(const wchar_t* name, std::wstring_view text) {
    Part part;
    part.name = name;
    part.bytes = BytesOfText(text);
    return part;
}

}  // namespace recorder
