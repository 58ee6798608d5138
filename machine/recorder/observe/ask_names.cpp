#include "machine/recorder/observe/ask_calls.h"

namespace recorder {
namespace {

Part NamePart(const TextBuffer& buffer) {
    Part part;
    part.name = TextIn(buffer);
    return part;
}

// The names after the first one. Returns the error that ended the search.
std::uint32_t AddNextVolumes(const SystemFunctions& functions, HANDLE search, TextBuffer& buffer,
                             std::vector<Part>& parts) {
    if (functions.FindNextVolumeW == nullptr) {
        return ERROR_PROC_NOT_FOUND;
    }
    while (parts.size() < kMostParts) {
        std::fill(buffer.begin(), buffer.end(), L'\0');
        if (functions.FindNextVolumeW(search, buffer.data(), static_cast<DWORD>(buffer.size())) == FALSE) {
            return LastFailure();
        }
        parts.push_back(NamePart(buffer));
    }
    return ERROR_INVALID_DATA;
}

}  // namespace

Answer AskVolumes(const SystemFunctions& functions, const Question& question) {
    if (functions.FindFirstVolumeW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    TextBuffer buffer(question.size);
    const HANDLE search = functions.FindFirstVolumeW(buffer.data(), question.size);
    if (search == INVALID_HANDLE_VALUE) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.parts.push_back(NamePart(buffer));
    const std::uint32_t end = AddNextVolumes(functions, search, buffer, answer.parts);
    if (end != ERROR_NO_MORE_FILES) {
        answer.error = end;
        answer.step = "FindNextVolumeW";
    }
    if (functions.FindVolumeClose != nullptr) {
        functions.FindVolumeClose(search);
    }
    return answer;
}

Answer AskMountPaths(const SystemFunctions& functions, const Question& question) {
    if (functions.GetVolumePathNamesForVolumeNameW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    TextBuffer buffer(question.size);
    DWORD needed = 0;
    Answer answer;
    if (functions.GetVolumePathNamesForVolumeNameW(question.object.c_str(), buffer.data(), question.size,
                                                   &needed) == FALSE) {
        answer = Failure(LastFailure());
    } else {
        answer.bytes = BytesIn(buffer, needed);
    }
    answer.returned = needed;
    return answer;
}

Answer AskVolumeName(const SystemFunctions& functions, const Question& question) {
    if (functions.GetVolumeNameForVolumeMountPointW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    TextBuffer buffer(question.size);
    if (functions.GetVolumeNameForVolumeMountPointW(question.object.c_str(), buffer.data(), question.size) ==
        FALSE) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.bytes = BytesOfText(TextIn(buffer));
    return answer;
}

Answer AskDosDevice(const SystemFunctions& functions, const Question& question) {
    if (functions.QueryDosDeviceW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    TextBuffer buffer(question.size);
    const DWORD length = functions.QueryDosDeviceW(
        question.object.empty() ? nullptr : question.object.c_str(), buffer.data(), question.size);
    if (length == 0) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.returned = length;
    answer.bytes = BytesIn(buffer, length);
    return answer;
}

Answer AskLogicalDrives(const SystemFunctions& functions, const Question& /*question*/) {
    if (functions.GetLogicalDrives == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    SetLastError(ERROR_SUCCESS);  // a machine without drives has the mask 0 too
    Answer answer;
    answer.value = functions.GetLogicalDrives();
    answer.error = answer.value == 0 ? GetLastError() : 0;
    return answer;
}

Answer AskFirmwareType(const SystemFunctions& functions, const Question& /*question*/) {
    if (functions.GetFirmwareType == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    FIRMWARE_TYPE type{};
    if (functions.GetFirmwareType(&type) == FALSE) {
        return Failure(LastFailure());
    }
    Answer answer;
    static_assert(sizeof(type) == sizeof(std::uint32_t));
    answer.value = *reinterpret_cast<const std::uint32_t*>(&type);  // may be no enumerator
    return answer;
}

// Asks without a buffer: only the error tells the kind of firmware.
Answer AskFirmwareVariable(const SystemFunctions& functions, const Question& question) {
    if (functions.GetFirmwareEnvironmentVariableW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    const DWORD length = functions.GetFirmwareEnvironmentVariableW(L"", question.object.c_str(), nullptr, 0);
    if (length == 0) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.value = length;
    return answer;
}

}  // namespace recorder
