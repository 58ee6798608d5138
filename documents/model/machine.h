#pragma once

#include "documents/model/disk.h"
#include "documents/model/volume.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// A captured document, whatever its format. A reader fills it; the commands only read it. The rules of disk.h
// apply: what the document does not say has no value.
namespace documents {

enum class Format { kOne = 1, kTwo = 2, kThree = 3 };

// One value of the system sections or of BootConfig. Values that are always 0 by the format (ProcessorId,
// UniqueId, SettingID) and empty texts are left out.
struct Fact {
    std::string_view section;  // "OS"; a name of the format, which lives as long as the program
    std::string_view name;     // "CSName"
    std::variant<std::int64_t, std::string> value;
};

// A row of DriveLetterTable (formats 1 and 2).
struct DriveLetter {
    std::string drive;      // "C:\"; empty: the volume has no letter
    std::string reference;  // the m_GUID of the volume
};

// What is wrong with the form of a document that can be read all the same.
struct FormFault {
    enum class Kind {
        kWrongCount,  // a count differs from the elements that follow
        kWrongOrder,  // numbered elements are not in order, or one is missing
        kRepeated,    // an element that may be there once is there again
        kUnknown,     // an element that the format does not have
    };
    Kind kind = Kind::kUnknown;
    std::string place;  // "DiskDrives/x0/size_idy"
    std::string text;   // a sentence
};

struct Machine {
    Format format = Format::kTwo;
    std::string library_version;  // "9.50.6732."

    std::vector<Fact> facts;                   // in the order of the document
    std::vector<std::string> startup_options;  // ComputerSystem/SystemStartupOptions

    std::vector<Disk> disks;  // by number; no placeholders
    // Formats 1 and 2: the numbers that are placeholders. Format 2: there is no such disk. Format 1: that, or
    // a GPT disk, or one that could not be read.
    std::vector<std::uint32_t> placeholders;

    std::vector<Volume> volumes;  // in the order of the document

    std::vector<DriveLetter> drive_letters;
    std::optional<std::string> boot_reference;    // m_guidBootVolume
    std::optional<std::string> system_reference;  // m_guidSystemVolume

    std::vector<FormFault> form_faults;
};

// The value of a fact, as text or number; none if the document has none of that type.
std::optional<std::string> TextFact(const Machine& machine, std::string_view section, std::string_view name);
std::optional<std::int64_t> NumberFact(const Machine& machine, std::string_view section,
                                       std::string_view name);

}  // namespace documents
