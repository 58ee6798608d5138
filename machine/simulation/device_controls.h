#pragma once

#include "machine/simulation/fault_plan.h"
#include "machine/simulation/handle_table.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace machine {

class Simulation;

struct ControlRequest {
    DWORD code = 0;
    const std::uint8_t* input = nullptr;
    std::size_t input_size = 0;
    std::size_t output_size = 0;
    std::uint32_t access = 0;  // rights of the handle: FILE_READ_DATA, FILE_WRITE_DATA
};

// The number of a volume that is described without one.
std::optional<StorageNumber> UsualStorageNumber(const Volume& volume);

// Whether a handle with these rights may send the control. The system checks it before any driver is asked.
bool MayControl(DWORD code, std::uint32_t access);

// Answers a device control on an open disk, volume or root directory. Returns at most `output_size` bytes.
Answer AnswerControl(Simulation& simulation, const OpenObject& object, const ControlRequest& request);

Answer AnswerDiskControl(Disk& disk, const ControlRequest& request);
Answer AnswerVolumeControl(Simulation& simulation, const Volume& volume, const ControlRequest& request);

// Returns the bytes, or ERROR_INSUFFICIENT_BUFFER if they do not fit the caller's buffer.
Answer BytesOrTooSmall(Bytes bytes, const ControlRequest& request);

// Controls that change a disk.

Answer SetDriveLayout(Disk& disk, const ControlRequest& request);
Answer CreateDisk(Disk& disk, const ControlRequest& request);
Answer DeleteDriveLayout(Disk& disk);

// Reads the partition table of a writable image again.
Answer UpdateProperties(Disk& disk);

}  // namespace machine
