#ifndef ORVANE_ORVANE_H
#define ORVANE_ORVANE_H

/*
 * Orvane describes the machine that it runs on to a backup agent.
 *
 * Rules for every function:
 * 1. Threads. Call from one thread at a time. The library has no threads of its own; the callback is called
 * on the calling thread, before the function returns.
 * 2. State. The settings (callback, format, selected volumes) belong to the process and persist from call to
 *    call. Everything that is described is collected anew by each call. What the calls leave in the process:
 *    COM security, set once where nobody else has set it, and the backup and restore privileges, enabled by
 *    captures in formats 1 and 2 where the process holds them.
 * 3. Ownership. Memory that you pass stays yours and is not kept after the call; the callback pointer alone
 * is kept. The library hands out no memory: nothing is to be freed.
 * 4. Null. A null pointer is allowed where this header says so.
 * 5. Failure. No exception leaves a function. Failures are told by the status and by lines in the log. A
 *    capture that fails stores nothing. All memory of the library lies in one heap of its own; where the
 * system has none for it, loading the library fails.
 * 6. Text. Wide texts are UTF-16. The document is 8-bit, in the system's ANSI code page: for a letter that
 * the page lacks the system's best fit or substitute stands. The callback's text is 8-bit, in the current
 * locale of the C runtime msvcrt.dll, which an agent built on another runtime does not choose. A line that
 * the locale cannot express, or not within 254 bytes, is replaced by "ASSERTION FAILED, src/common/logger:79
 * !err".
 * 7. COM. Around each use of COM the library initialises it on the calling thread, as a single-threaded
 *    apartment; a capture in format 3 needs it initialised by the caller besides. Do not call from a thread
 * of the multithreaded apartment: each use of COM there takes back an initialisation that is not the
 * library's.
 */

#include <stdint.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What CaptureSystemRestorePointInfo returns. */
#define ORVANE_SUCCESS 0u          /* the document is in the buffer */
#define ORVANE_FAILED 1u           /* nothing was written; the log says why */
#define ORVANE_BUFFER_TOO_SMALL 2u /* the buffer is untouched; the size that is needed was stored */

/* Levels that the callback receives. */
#define ORVANE_LEVEL_TRACE 0
#define ORVANE_LEVEL_INFORMATION 1
#define ORVANE_LEVEL_WARNING 2
#define ORVANE_LEVEL_ERROR 3

/* Receives one message of the log: its level and its text, terminated, at most 254 bytes (longer messages are
 * cut or replaced, rule 6), valid during the call only. Must not throw and must not call the library. */
typedef void (*OrvaneEventCallback)(int32_t level, const char* text);

/* The version of this interface, always 4. */
uint32_t GetOrvaneVersion(void);

/* Installs the log callback, replacing any earlier one. NULL restores the default: levels from warnings up go
 * to the debugger output. */
void SetEventFunc(OrvaneEventCallback callback);

/* Chooses the format of the document. 2, the default: flat tables of disks, partitions and volumes. 1: the
 * same tables, collected by the older enumerator, which describes MBR disks only and judges nothing. 3: every
 * disk and volume as it sees itself. Any other value is taken for 2. */
void SetXmlFormat(uint32_t format);

/* Replaces the list of volumes that are to be backed up and returns how many it now holds. `volume_guid_list`
 * is a multi-string: volume GUID paths ("\\?\Volume{...}\"), each ended by a zero character, the list by an
 * empty entry. `count` is the number of characters that may be read; an entry that does not end within them
 * is taken as far as they go. NULL or an empty list clears the list. Entries are taken as they are; the
 * capture finds their volumes without regard to case, as the system compares its own names, and judges them.
 * Compare the result with the number that you meant: without memory the list is empty, and a capture after
 * that judges nothing. */
int64_t SetupSelectedVolumesList(const wchar_t* volume_guid_list, uint64_t count);

/* Describes the machine as an XML document, after judging whether every selected volume can be backed up
 * (formats 2 and 3).
 * `buffer` receives the document without a terminator when `buffer_size` bytes are enough. `required_size`
 * (may be NULL) receives its length in bytes with ORVANE_SUCCESS and ORVANE_BUFFER_TOO_SMALL, and is left
 * alone otherwise. To learn the size, call with a size of 0; `buffer` may then be NULL. A NULL buffer of a
 * size that would be enough fails. Format 3 needs COM initialised on the calling thread
 * (COINIT_APARTMENTTHREADED); a success with a size of 0 is there a document that could not be turned into
 * bytes. */
uint32_t CaptureSystemRestorePointInfo(char* buffer, uint32_t buffer_size, uint32_t* required_size);

/* The dumps: each writes what it finds into the log, for support staff, as lines of level
 * ORVANE_LEVEL_INFORMATION, and failures mostly as lines of level ORVANE_LEVEL_ERROR. Without a callback only
 * errors and warnings are seen. None touches the settings or looks at the selected volumes. */

/* Processor, boot configuration, computer system and operating system, as the management interface has them.
 */
void WMIDumpInfo(void);

/* Every physical disk with its partition table, and whether it can be backed up. */
void DiskDumpInfo(void);

/* Every volume, and whether it can be backed up, whatever the format and the selected volumes. */
void VolumeDumpInfo(void);

/* The version of the library, and whether the machine was started by BIOS or UEFI firmware. */
void FirmwareDumpInfo(void);

#ifdef __cplusplus
}
#endif

#endif
