#pragma once

#include "common/windows.h"
#include "machine/simulation/call_frame.h"

#include <winternl.h>

#include <string>

// Replacements for system functions in redirected modules. Each has the signature and behaviour of the
// system function of the same name. Calls that do not concern the simulation are forwarded to the system
// function.
namespace machine::simulated {

HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE model);
BOOL WINAPI CloseHandle(HANDLE handle);
BOOL WINAPI DeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD input_size, LPVOID output,
                            DWORD output_size, LPDWORD returned, LPOVERLAPPED overlapped);
BOOL WINAPI FlushFileBuffers(HANDLE handle);
BOOL WINAPI WriteFile(HANDLE handle, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped);

HANDLE WINAPI FindFirstVolumeW(LPWSTR name, DWORD size);
BOOL WINAPI FindNextVolumeW(HANDLE search, LPWSTR name, DWORD size);
BOOL WINAPI FindVolumeClose(HANDLE search);

BOOL WINAPI GetVolumePathNamesForVolumeNameW(LPCWSTR volume, LPWCH names, DWORD size, PDWORD needed);
BOOL WINAPI GetVolumeNameForVolumeMountPointW(LPCWSTR mount_point, LPWSTR name, DWORD size);
BOOL WINAPI GetVolumePathNameW(LPCWSTR path, LPWSTR mount_point, DWORD size);
DWORD WINAPI QueryDosDeviceW(LPCWSTR device, LPWSTR targets, DWORD size);
DWORD WINAPI GetLogicalDrives();

UINT WINAPI GetDriveTypeW(LPCWSTR root);
BOOL WINAPI GetDiskFreeSpaceW(LPCWSTR root, LPDWORD sectors_per_cluster, LPDWORD bytes_per_sector,
                              LPDWORD free_clusters, LPDWORD total_clusters);
BOOL WINAPI GetDiskFreeSpaceExW(LPCWSTR root, PULARGE_INTEGER free_to_caller, PULARGE_INTEGER total,
                                PULARGE_INTEGER total_free);
BOOL WINAPI GetVolumeInformationW(LPCWSTR root, LPWSTR label, DWORD label_size, LPDWORD serial,
                                  LPDWORD max_component, LPDWORD flags, LPWSTR file_system,
                                  DWORD file_system_size);

BOOL WINAPI GetFirmwareType(PFIRMWARE_TYPE type);
DWORD WINAPI GetFirmwareEnvironmentVariableW(LPCWSTR name, LPCWSTR guid, PVOID buffer, DWORD size);

NTSTATUS NTAPI ZwOpenDirectoryObject(PHANDLE directory, ACCESS_MASK access, POBJECT_ATTRIBUTES attributes);
NTSTATUS NTAPI ZwQueryDirectoryObject(HANDLE directory, PVOID buffer, ULONG size, BOOLEAN single,
                                      BOOLEAN restart, PULONG context, PULONG returned);
NTSTATUS NTAPI ZwClose(HANDLE handle);

// Appends a null-terminated string to an answer's bytes.
void AppendText(Bytes& bytes, const std::wstring& text);

// Copies the answer's bytes to the buffer of `size` characters; truncates them if they do not fit.
void CopyBytes(const Answer& answer, LPWSTR buffer, DWORD size);

// Returns an empty string for a null path.
std::wstring TextOrEmpty(LPCWSTR text);

// The current simulation if it opened the handle, now or earlier; otherwise null.
Simulation* SimulationOf(HANDLE handle);

}  // namespace machine::simulated
