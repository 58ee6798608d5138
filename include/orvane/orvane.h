#ifndef ORVANE_ORVANE_H
#define ORVANE_ORVANE_H

/*
 * Orvane describes the machine that it runs on to a backup agent.
 *
 * Rules for every function:
 *
 * 1. Threads. Call from one thread at a time. The library starts no thread. The callback is called on the
 *    calling thread, before the function returns. While a capture or a dump asks the system, the thread's
 *    error mode includes SEM_FAILCRITICALERRORS; the callback runs in the mode that the caller set.
 *
 * 2. State. The callback, the format and the selected volumes belong to the process and last from call to
 *    call. Every call queries the machine again. Calls leave three changes in the process: COM security is
 *    set, unless the process has set it already; captures in formats 1 and 2 enable the backup and restore
 *    privileges, if the process holds them; and captures and dumps of disks seed the random numbers of the
 *    C runtime msvcrt.dll (srand) on the calling thread.
 *
 * 3. Ownership. Memory that you pass stays yours. The library keeps no pointer to it, except the
 *    callback. The library hands out no memory, so there is nothing to free.
 *
 * 4. Null. A pointer may be null only where this header says so.
 *
 * 5. Failure. No exception leaves a function. The status and lines in the log report failures. A capture
 *    that fails stores nothing. The library allocates from one heap of its own. Loading the
 *    library fails if the system cannot provide that heap.
 *
 * 6. Text. Wide texts are UTF-16. The document is 8-bit text in the system's ANSI code page; a letter
 *    that the code page lacks is replaced by the system's best fit or substitute. The callback's text is
 *    8-bit text in the current locale of the C runtime msvcrt.dll, which an agent built with another
 *    runtime cannot set. A line that this locale cannot express, or cannot express in 254 bytes, is
 *    replaced by "ASSERTION FAILED, src/common/logger:79 !err".
 *
 * 7. COM. Where the library uses COM, it initialises COM on the calling thread as a single-threaded
 *    apartment and uninitialises it afterwards. A capture in format 3 also needs COM initialised by the
 *    caller. Do not call from a thread of the multithreaded apartment: there, each use of COM undoes an
 *    initialisation that the library did not make.
 */

#include <stdint.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What CaptureSystemRestorePointInfo returns. */
#define ORVANE_SUCCESS 0u          /* the document is in the buffer */
#define ORVANE_FAILED 1u           /* nothing was written; the log says why */
#define ORVANE_BUFFER_TOO_SMALL 2u /* the buffer is unchanged; the required size was stored */

/* The levels that the callback receives. */
#define ORVANE_LEVEL_TRACE 0
#define ORVANE_LEVEL_INFORMATION 1
#define ORVANE_LEVEL_WARNING 2
#define ORVANE_LEVEL_ERROR 3

/* Receives one line of the log: its level, and its text, which is null-terminated, at most 254 bytes long
 * (longer lines are cut or replaced, rule 6) and valid during the call only. Must not throw and must not
 * call the library. */
typedef void (*OrvaneEventCallback)(int32_t level, const char* text);

/* Returns the version of this interface, always 4. */
uint32_t GetOrvaneVersion(void);

/* Installs the log callback in place of any earlier one. NULL restores the default, which writes warnings and
 * errors to the debugger output. */
void SetEventFunc(OrvaneEventCallback callback);

/* Selects the format of the document:
 * 1: flat tables of disks, partitions and volumes, collected by the older enumerator, which describes MBR
 *    disks only. The selected volumes are not checked.
 * 2: the same tables for all disks. The default.
 * 3: every disk and every volume with all its own properties.
 * Any other value means 2. */
void SetXmlFormat(uint32_t format);

/* Replaces the list of volumes to be backed up and returns the number of volumes in the new list.
 * `volume_guid_list` is a multi-string: volume GUID paths ("\\?\Volume{...}\"), each followed by a null
 * character, and an empty entry at the end. `count` is the number of characters that may be read; an
 * entry that reaches beyond them is cut off there. NULL or an empty list clears the list.
 * The entries are stored as they are. The capture finds their volumes, without regard to case as the
 * system compares its own names, and judges them.
 * Compare the returned number with the number that you passed: without enough memory the list is empty,
 * and a capture then checks no volume. */
int64_t SetupSelectedVolumesList(const wchar_t* volume_guid_list, uint64_t count);

/* Describes the machine as an XML document. In formats 2 and 3 it first checks whether every selected volume
 * can be backed up, and fails if one cannot.
 * `buffer` receives the document, without a terminator, if it fits into `buffer_size` bytes.
 * `required_size` (may be NULL) receives the document's length in bytes with ORVANE_SUCCESS and
 * ORVANE_BUFFER_TOO_SMALL, and is unchanged otherwise. To ask for the size, pass a `buffer_size` of 0;
 * `buffer` may then be NULL. A NULL buffer with a size that would be enough fails.
 * Format 3 needs COM initialised on the calling thread (COINIT_APARTMENTTHREADED). In format 3, success
 * with size 0 means that the text could not be converted. */
uint32_t CaptureSystemRestorePointInfo(char* buffer, uint32_t buffer_size, uint32_t* required_size);

/* The dumps write what they find into the log, for support staff: as lines of ORVANE_LEVEL_INFORMATION, and
 * failures mostly as lines of ORVANE_LEVEL_ERROR. Without a callback only warnings and errors are
 * visible. The dumps neither change the settings nor look at the selected volumes. */

/* Dumps the processor, boot configuration, computer system and operating system that WMI reports. */
void WMIDumpInfo(void);

/* Dumps every physical disk with its partition table, and whether it can be backed up. */
void DiskDumpInfo(void);

/* Dumps every volume, and whether it can be backed up. The format and the selected volumes do not matter. */
void VolumeDumpInfo(void);

/* Dumps the version of the library, and whether BIOS or UEFI firmware started the machine. */
void FirmwareDumpInfo(void);

#ifdef __cplusplus
}
#endif

#endif
