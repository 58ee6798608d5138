#pragma once

#include <span>
#include <string_view>

// What is replaced in observations, and what stays. A description is written from redacted observations, so
// that it needs no table of its own.
namespace recorder {

// What a value is, and so what becomes of it.
enum class Content {
    kStays,         // free text that tells about the machine only; a search still looks into it
    kWord,          // numbers, and words that only the system chooses
    kText,          // replaced as a whole
    kName,          // of a computer, user or domain: the parts between "\", ".", "@" and "/" are replaced
    kPath,          // of a device, link, volume or folder: the parts that not every system has are replaced
    kTextAndPaths,  // "Windows|C:\Windows|\Device\...": a free text that stays, then paths
    kInstance,      // of a device: what follows bus and model is replaced
    kPartition,     // the name of a GPT partition; the usual ones stay
    kId,            // a disk signature, serial number or checksum
    kOptions,       // start options: values that the system does not choose are replaced
};

// The form of the bytes of an answer.
enum class Form { kNone, kPaths, kGeometry, kLayout, kLayoutEx, kPartition };

// The form of the parts of an answer.
enum class PartForm { kNone, kNames, kVolume, kWmi, kRegistry };

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the order of the columns of the table
struct CallRow {
    std::string_view call;
    Content object = Content::kWord;
    Form bytes = Form::kNone;
    PartForm parts = PartForm::kNone;
};

// A property of a WMI class, a member of GetVolumeInformationW or a registry value.
struct ValueRow {
    std::wstring_view name;
    Content content = Content::kText;
};

struct WmiRow {
    std::wstring_view name;  // of the class
    std::span<const ValueRow> values;
};

std::span<const CallRow> CallTable();
const CallRow* FindCall(std::string_view call);  // null if there is none

std::span<const ValueRow> VolumeTable();
std::span<const ValueRow> RegistryTable();
std::span<const WmiRow> WmiTable();

// kText for what has no row. Case of the names does not matter.
Content ContentOf(std::span<const ValueRow> table, std::wstring_view name);
Content ContentOfProperty(std::wstring_view wmi_class, std::wstring_view property);

}  // namespace recorder
