#pragma once

#include "machine/fault_plan.h"
#include "machine/handle_table.h"

#include <cstddef>
#include <cstdint>

namespace machine {

class Simulation;

struct ControlRequest {
    DWORD code = 0;
    const std::uint8_t* input = nullptr;
    std::size_t input_size = 0;
    std::size_t output_size = 0;
    std::uint32_t access = 0;  // FILE_READ_DATA and FILE_WRITE_DATA of the handle
};

// What a device control answers on an open disk, volume or root directory; the bytes are never more than
// `output_size`.
Answer AnswerControl(Simulation& simulation, const OpenObject& object, const ControlRequest& request);

Answer AnswerDiskControl(Disk& disk, const ControlRequest& request);
Answer AnswerVolumeControl(Simulation& simulation, const Volume& volume, const ControlRequest& request);

// The bytes, or ERROR_INSUFFICIENT_BUFFER when the caller's buffer cannot hold them.
Answer BytesOrTooSmall(Bytes bytes, const ControlRequest& request);

// The controls that change a disk.

Answer SetDriveLayout(Disk& disk, const ControlRequest& request);
Answer CreateDisk(Disk& disk, const ControlRequest& request);
Answer DeleteDriveLayout(Disk& disk);

// Reads the table of a writable image again.
Answer UpdateProperties(Disk& disk);

}  // namespace machine
