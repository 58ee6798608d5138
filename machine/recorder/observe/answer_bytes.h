#pragma once

#include "machine/description/description.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <vector>

// The structures in the bytes of answers. Nothing beyond the bytes is read, whatever counts they hold.
namespace recorder {

// A structure at an offset; none if the bytes do not hold all of it.
template <class Record>
std::optional<Record> RecordAt(const machine::Bytes& bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Record)) {
        return std::nullopt;
    }
    Record record{};
    std::memcpy(&record, bytes.data() + offset, sizeof(record));
    return record;
}

// The structure at the beginning; none if there are no bytes or they do not hold all of it.
template <class Record>
std::optional<Record> RecordIn(const machine::Bytes* bytes) {
    return bytes == nullptr ? std::nullopt : RecordAt<Record>(*bytes, 0);
}

// `count` structures from an offset, or as many as the bytes hold.
template <class Record>
std::vector<Record> RecordsAt(const machine::Bytes& bytes, std::size_t offset, std::size_t count) {
    std::vector<Record> records;
    for (std::size_t i = 0; i < count; ++i) {
        const auto record = RecordAt<Record>(bytes, offset + i * sizeof(Record));
        if (!record) {
            break;
        }
        records.push_back(*record);
    }
    return records;
}

// The extents of an answer to the extents control.
std::vector<DISK_EXTENT> ExtentsIn(const machine::Bytes& bytes);

// An answer to the layout control: what stands before the entries, and the entries.
std::optional<DRIVE_LAYOUT_INFORMATION_EX> LayoutHeaderIn(const machine::Bytes& bytes);
std::vector<machine::Partition> PartitionsIn(const machine::Bytes& bytes);

// The entries of an answer to the older layout control, which knows MBR disks only.
std::vector<machine::Partition> OlderPartitionsIn(const machine::Bytes& bytes);

machine::Partition PartitionIn(const PARTITION_INFORMATION_EX& information);
machine::Partition PartitionIn(const PARTITION_INFORMATION& information);

// The partition in an answer to the partition control or, if there is none, to the older one. Either may be
// null.
std::optional<machine::Partition> PartitionIn(const machine::Bytes* answer, const machine::Bytes* older);

// What stands behind the geometry in an answer to the extended geometry control; drivers may leave it out.
std::optional<DISK_PARTITION_INFO> PartitionInfoIn(const machine::Bytes& bytes);
std::optional<DISK_DETECTION_INFO> DetectionInfoIn(const machine::Bytes& bytes);

}  // namespace recorder
