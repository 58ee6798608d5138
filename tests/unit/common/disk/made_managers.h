#pragma once

#include "common/disk/partition_manager_gpt.h"
#include "common/disk/partition_manager_mbr.h"
#include "unit/common/disk/partition_entries.h"

#include <initializer_list>

// Partition managers with the entries that a test passes in, without a disk.
namespace made {

inline constexpr std::uint32_t kDiskIndex = 3;

template <class Manager>
class ManagerOf : public Manager {
public:
    explicit ManagerOf(std::initializer_list<PARTITION_INFORMATION_EX> entries = {}) : Manager(kDiskIndex) {
        for (const PARTITION_INFORMATION_EX& entry : entries) {
            const bmr_common::PartitionPtr partition = this->CreatePartition();
            partition->Initialize(entry);
            this->partitions_.push_back(partition);
        }
    }

    bmr_common::OperationStatus& status() { return this->status_; }
    std::vector<bmr_common::PartitionPtr>& list() { return this->partitions_; }
    const win::ByteBuffer& layout_bytes() const { return this->layout_; }
};

using GptManager = ManagerOf<bmr_common::PartitionManagerGPT>;
using MbrManager = ManagerOf<bmr_common::PartitionManagerMBR>;

}  // namespace made
