#pragma once

#include "machine/recorder/observe/observations.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The questions of a recording: which call is asked about which objects, and with which buffers.
namespace recorder {

// What a row is asked about. The objects come from the answers to the rows of the subjects before.
enum class Subject {
    kMachine,       // the object of the row
    kDosName,       // every name of \GLOBAL??, of QueryDosDeviceW, and every drive letter
    kVolumeName,    // "\\?\Volume{...}\": of the volume search and of the links in \GLOBAL??
    kDisk,          // "\\.\PhysicalDriveN" and the device that it leads to
    kVolumeDevice,  // a volume by its device, its volume name and its drive letter, to be opened
    kVolumeRoot,    // the same with a backslash at the end: the root of the file system
    kMountPoint,    // every drive letter and every folder at which a volume is mounted
};

// The buffers with which a call is asked: those listed and, if the largest one is too small, larger ones.
// With `exact` also the size that the system told, and one less.
struct Sizes {
    std::span<const std::uint32_t> listed;
    bool exact = false;
};

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the order of the columns of the table
struct QuestionRow {
    Subject subject = Subject::kMachine;
    const char* call = nullptr;
    const wchar_t* object = nullptr;  // of kMachine
    Sizes sizes;
    bool opens = false;  // asked with read access and with none
};

std::span<const QuestionRow> QuestionTable();

// The subjects in the order in which they are asked.
std::span<const Subject> Subjects();

// The objects of a subject other than kMachine that the answers so far name.
std::vector<std::wstring> ObjectsOf(Subject subject, const Observations& observations);

}  // namespace recorder
