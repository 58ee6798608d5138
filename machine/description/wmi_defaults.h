#pragma once

#include "machine/description/description.h"

namespace machine {

// Fills Description::wmi with the classes that a machine with these disks and volumes reports:
// Win32_DiskDrive, Win32_Processor, Win32_OperatingSystem, Win32_ComputerSystem and Win32_BootConfiguration.
void AddDerivedWmi(Description& description);

// The key of a class in Description::wmi.
std::wstring WmiClassKey(const std::wstring& name);

// Replaces the property of the same name, or adds it.
void SetProperty(WmiInstance& instance, const WmiProperty& property);

const WmiProperty* FindProperty(const WmiInstance& instance, const std::wstring& name);

}  // namespace machine
