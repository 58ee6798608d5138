#pragma once

#include "machine/session/session.h"

// A machine with volumes that can be backed up and volumes that cannot, each for a different reason:
// HarddiskVolume1: GPT disk 0, C:
// HarddiskVolume2: MBR disk 1, D: and a folder
// HarddiskVolume3: removable, E:
// HarddiskVolume4: on disk 4, which is missing; no mount point
// HarddiskVolume5: raw disk 2, F:
// HarddiskVolume6: no GUID; on the same partition as HarddiskVolume1
inline constexpr char kMixedMachine[] = R"({
    "name": "mixed",
    "disks": [
        {"index": 0, "size": "100 GiB", "style": "gpt", "partitions": [
            {"offset": "1 MiB", "size": "100 MiB", "type": "efi-system"},
            {"offset": "101 MiB", "size": "50 GiB", "type": "basic-data"}]},
        {"index": 1, "size": "10 GiB", "style": "mbr", "signature": "0x12345678", "partitions": [
            {"offset": "1 MiB", "size": "9 GiB", "type": "ntfs"}]},
        {"index": 2, "size": "10 GiB", "style": "raw"}
    ],
    "volumes": [
        {"device": "\\Device\\HarddiskVolume1", "guid": "{11111111-0000-0000-0000-000000000000}",
         "partition": {"disk": 0, "number": 2}, "mountPoints": ["C:\\"]},
        {"device": "\\Device\\HarddiskVolume2", "guid": "{22222222-0000-0000-0000-000000000000}",
         "partition": {"disk": 1, "number": 1}, "mountPoints": ["D:\\", "C:\\Data\\"]},
        {"device": "\\Device\\HarddiskVolume3", "guid": "{33333333-0000-0000-0000-000000000000}",
         "driveType": "removable", "mountPoints": ["E:\\"]},
        {"device": "\\Device\\HarddiskVolume4", "guid": "{44444444-0000-0000-0000-000000000000}", "unchecked": true,
         "extents": [{"disk": 4, "offset": "1 MiB", "length": "1 GiB"}]},
        {"device": "\\Device\\HarddiskVolume5", "guid": "{55555555-0000-0000-0000-000000000000}",
         "extents": [{"disk": 2, "offset": 0, "length": "1 GiB"}], "mountPoints": ["F:\\"]},
        {"device": "\\Device\\HarddiskVolume6", "guid": null, "partition": {"disk": 0, "number": 2}}
    ]
})";

inline constexpr wchar_t kGoodVolume[] = L"\\\\?\\Volume{11111111-0000-0000-0000-000000000000}\\";
inline constexpr wchar_t kTwiceMountedVolume[] = L"\\\\?\\Volume{22222222-0000-0000-0000-000000000000}\\";
inline constexpr wchar_t kRemovableVolume[] = L"\\\\?\\Volume{33333333-0000-0000-0000-000000000000}\\";
inline constexpr wchar_t kVolumeOnMissingDisk[] = L"\\\\?\\Volume{44444444-0000-0000-0000-000000000000}\\";
inline constexpr wchar_t kVolumeOnRawDisk[] = L"\\\\?\\Volume{55555555-0000-0000-0000-000000000000}\\";
inline constexpr wchar_t kUnknownVolume[] = L"\\\\?\\Volume{99999999-0000-0000-0000-000000000000}\\";

inline machine::Description MixedMachine() {
    return machine::ParseDescription(kMixedMachine, "mixed machine");
}
