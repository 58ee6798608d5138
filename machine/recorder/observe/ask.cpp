#include "machine/recorder/observe/ask.h"

#include "machine/recorder/observe/ask_calls.h"

#include <iterator>
#include <stdexcept>

namespace recorder {
namespace {

struct AskingRow {
    std::string_view call;
    Answer (*ask)(const SystemFunctions& functions, const Question& question);
};

constexpr AskingRow kAsking[] = {
    {"CoCreateInstance", AskXmlComponent},
    {"CreateFileW", AskOpening},
    {"FindFirstVolumeW", AskVolumes},
    {"GetDiskFreeSpaceExW", AskFreeSpaceEx},
    {"GetDiskFreeSpaceW", AskFreeSpace},
    {"GetDriveTypeW", AskDriveType},
    {"GetFirmwareEnvironmentVariableW", AskFirmwareVariable},
    {"GetFirmwareType", AskFirmwareType},
    {"GetLogicalDrives", AskLogicalDrives},
    {"GetVolumeInformationW", AskVolumeInformation},
    {"GetVolumeNameForVolumeMountPointW", AskVolumeName},
    {"GetVolumePathNamesForVolumeNameW", AskMountPaths},
    {"IEnumWbemClassObject::Next", AskWmiWithoutSecurity},
    {"IWbemServices::ExecQuery", AskWmiClass},
    {"IXMLDOMNode::get_xml", AskXmlText},
    {"QueryDosDeviceW", AskDosDevice},
    {"RegEnumValueW", AskRegistryValues},
    {"ZwQueryDirectoryObject", AskDirectory},
};

}  // namespace

Answer Ask(const SystemFunctions& functions, const Question& question) {
    if (question.call.starts_with("DeviceIoControl:")) {
        return AskControl(functions, question);
    }
    const auto* row = std::find_if(std::begin(kAsking), std::end(kAsking),
                                   [&](const AskingRow& known) { return known.call == question.call; });
    if (row == std::end(kAsking)) {
        throw std::invalid_argument(question.call + " is no question");
    }
    return row->ask(functions, question);
}

}  // namespace recorder
