#include "capture/document/environment_document.h"

#include "capture/document/flat_tables.h"
#include "capture/document/system_sections.h"
#include "common/xml/xml_values.h"

void WriteEnvironment(CMSXmlNode& root, const EnvInfo& environment) {
    CMSXmlNode node = root.AddChild("BMREnvInfo");
    WriteSystemSections(node, environment);
    WriteDiskDrives(node, environment.DiskDrives);
    WriteVolumeTable(node, environment.VolumeTable);
    WriteDriveLetterTable(node, environment.DriveLetterTable);
    WriteBootConfig(node, environment.BootConfig);
    node.AddTextChild("BootIniContents", environment.BootIniContents);
}

void WriteEnvironment(CMSXmlNode& root, const EnvInfoV3& environment) {
    CMSXmlNode node = root.AddChild("BMREnvInfo");
    WriteSystemSections(node, environment);
    environment.device_manager.CaptureInfo(node);
    environment.volume_manager.CaptureInfo(node);
}
