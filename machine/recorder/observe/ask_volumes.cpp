#include "machine/recorder/observe/ask_calls.h"

namespace recorder {

Answer AskDriveType(const SystemFunctions& functions, const Question& question) {
    if (functions.GetDriveTypeW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    SetLastError(ERROR_SUCCESS);  // the function reports an unknown type, not an error
    Answer answer;
    answer.value = functions.GetDriveTypeW(question.object.c_str());
    answer.error = answer.value == DRIVE_UNKNOWN ? GetLastError() : 0;
    return answer;
}

Answer AskFreeSpace(const SystemFunctions& functions, const Question& question) {
    if (functions.GetDiskFreeSpaceW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    DWORD sectors_per_cluster = 0;
    DWORD bytes_per_sector = 0;
    DWORD free_clusters = 0;
    DWORD total_clusters = 0;
    if (functions.GetDiskFreeSpaceW(question.object.c_str(), &sectors_per_cluster, &bytes_per_sector,
                                    &free_clusters, &total_clusters) == FALSE) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.parts = {NumberPart(L"sectorsPerCluster", sectors_per_cluster),
                    NumberPart(L"bytesPerSector", bytes_per_sector),
                    NumberPart(L"freeClusters", free_clusters), NumberPart(L"totalClusters", total_clusters)};
    return answer;
}

Answer AskFreeSpaceEx(const SystemFunctions& functions, const Question& question) {
    if (functions.GetDiskFreeSpaceExW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    ULARGE_INTEGER to_caller{};
    ULARGE_INTEGER total{};
    ULARGE_INTEGER free{};
    if (functions.GetDiskFreeSpaceExW(question.object.c_str(), &to_caller, &total, &free) == FALSE) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.parts = {NumberPart(L"freeBytesToCaller", to_caller.QuadPart),
                    NumberPart(L"totalBytes", total.QuadPart), NumberPart(L"freeBytes", free.QuadPart)};
    return answer;
}

Answer AskVolumeInformation(const SystemFunctions& functions, const Question& question) {
    if (functions.GetVolumeInformationW == nullptr) {
        return Failure(ERROR_PROC_NOT_FOUND);
    }
    TextBuffer label(question.size);
    TextBuffer file_system(question.size);
    DWORD serial = 0;
    DWORD max_component = 0;
    DWORD flags = 0;
    if (functions.GetVolumeInformationW(question.object.c_str(), label.data(), question.size, &serial,
                                        &max_component, &flags, file_system.data(), question.size) == FALSE) {
        return Failure(LastFailure());
    }
    Answer answer;
    answer.parts = {TextPart(L"label", TextIn(label)), TextPart(L"fileSystem", TextIn(file_system)),
                    NumberPart(L"serial", serial), NumberPart(L"maxComponentLength", max_component),
                    NumberPart(L"flags", flags)};
    return answer;
}

}  // namespace recorder
