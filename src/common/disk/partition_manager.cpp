#include "common/disk/partition_manager.h"

#include "common/logger/trace.h"
#include "common/text/decimal_text.h"
#include "common/xml/xml_values.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace bmr_common {

const std::wstring kGettingDriveLayoutEx = L"Getting Drive Layout Ex";
const std::wstring kVerifyingPartitionType = L"Verifying partition type";

namespace {

constexpr std::size_t kLayoutHeaderBytes = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
static_assert(kLayoutHeaderBytes == 48 && sizeof(PARTITION_INFORMATION_EX) == 144,
              "the layout is exchanged with the driver byte by byte");

}  // namespace

DRIVE_LAYOUT_INFORMATION_EX* LayoutIn(win::ByteBuffer& buffer) {
    return reinterpret_cast<DRIVE_LAYOUT_INFORMATION_EX*>(buffer.data());
}

PartitionManager::PartitionManager(std::uint32_t disk_index)
    : status_{kGettingDriveLayoutEx, kVerifyingPartitionType}, disk_index_(disk_index) {}

const DRIVE_LAYOUT_INFORMATION_EX* PartitionManager::layout() const {
    return status_.IsSucceeded(kGettingDriveLayoutEx)
               ? reinterpret_cast<const DRIVE_LAYOUT_INFORMATION_EX*>(layout_.data())
               : nullptr;
}

DRIVE_LAYOUT_INFORMATION_EX* PartitionManager::mutable_layout() {
    return LayoutIn(layout_);
}

win::ByteBuffer PartitionManager::MakeLayout(std::size_t entries) {
    return win::ByteBuffer(kLayoutHeaderBytes +
                           sizeof(PARTITION_INFORMATION_EX) * std::max<std::size_t>(entries, 1));
}

bool PartitionManager::GetDriveLayoutEx(const UniqueFile& drive) {
    DWORD error = 0;
    if (win::WinAPIWrapper::GetDriveLayoutEx(drive, disk_index_, layout_, error)) {
        status_.SetSuccess(kGettingDriveLayoutEx);
        return true;
    }
    status_.SetError(kGettingDriveLayoutEx, L"Failed to get drive " + DecimalText(disk_index_) +
                                                L" layout information error: " + DecimalText(error));
    return false;
}

void PartitionManager::InitializeExpecting(std::uint32_t style, const std::wstring& refusal,
                                           const wchar_t* function, const UniqueFile& drive) {
    Traced(function, [&] {
        if (!GetDriveLayoutEx(drive)) {
            return;
        }
        if (layout()->PartitionStyle == style) {
            status_.SetSuccess(kVerifyingPartitionType);
            AddPartitionsOfLayout();
            return;
        }
        // The wording and the trace level are kept on purpose: compatibility C32
        const std::wstring text =
            refusal + DecimalText(layout()->PartitionStyle) + L" on disk " + DecimalText(disk_index_);
        status_.SetError(kVerifyingPartitionType, text);
        GetLogger().Write(kLogTrace, L"%s %s", function, text.c_str());
    });
}

void PartitionManager::AddPartitionsOfLayout() {
    const DRIVE_LAYOUT_INFORMATION_EX& layout = *mutable_layout();
    for (DWORD i = 0; i < layout.PartitionCount; ++i) {
        const PartitionPtr partition = CreatePartition();
        partition->Initialize(layout.PartitionEntry[i]);
        partitions_.push_back(partition);
    }
}

bool PartitionManager::can_backup(std::vector<std::wstring>& reasons) const {
    status_.GetErrors(reasons);
    return !status_.HasErrors();
}

bool PartitionManager::AnyPartitionInUse(std::vector<std::wstring>& reasons) const {
    const bool any = std::any_of(partitions_.begin(), partitions_.end(),
                                 [](const PartitionPtr& partition) { return !partition->is_unused(); });
    if (!any) {
        // Starts with a blank: compatibility C33
        const std::wstring reason =
            L" All partitions are marked as unused entry - cannot backup disk " + DecimalText(disk_index_);
        reasons.push_back(reason);
        GetLogger().WriteTextAsFormat(kLogInformation, reason.c_str());
    }
    return any;
}

void PartitionManager::DumpInfo() const {
    Traced(L"bmr_common::PartitionManager::DumpInfo", [&] {
        status_.DumpAll();
        if (layout() != nullptr) {
            GetLogger().Write(kLogInformation, L"");
            GetLogger().Write(kLogInformation, L"  Disk partition style: %d", layout()->PartitionStyle);
            GetLogger().Write(kLogInformation, L"  Number of partitions: %d", layout()->PartitionCount);
        }
    });
}

void PartitionManager::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::PartitionManager::CaptureInfo", [&] {
        if (layout() != nullptr) {
            AddNumberElement(parent, "PartitionStyle", layout()->PartitionStyle);
            AddNumberElement(parent, "NumberOfPartitions", layout()->PartitionCount);
        }
    });
}

bool PartitionManager::is_dynamic() const {
    return std::any_of(partitions_.begin(), partitions_.end(),
                       [](const PartitionPtr& partition) { return partition->is_dynamic(); });
}

bool PartitionManager::IsOnBootablePartition(const wchar_t* function, std::int64_t offset,
                                             std::int64_t length) const {
    std::vector<PartitionPtr> found;
    FindPartitionsContainingExtent(offset, length, found);
    if (found.size() == 1) {
        return found.front()->is_bootable();
    }
    // The second number is the extent's length instead of its end: compatibility C20
    GetLogger().Write(kLogError,
                      found.empty() ? L"%s no partition that contains extent (%I64i to %I64i)."
                                    : L"%s multiple partitions contains extent (%I64i to %I64i).",
                      function, offset, length);
    return false;
}

void PartitionManager::FindPartitionsContainingExtent(std::int64_t offset, std::int64_t length,
                                                      std::vector<PartitionPtr>& found) const {
    found.clear();
    std::copy_if(partitions_.begin(), partitions_.end(), std::back_inserter(found),
                 [&](const PartitionPtr& partition) { return partition->contains_extent(offset, length); });
}

bool PartitionManager::IsExtentOverlappingAnyPartition(std::int64_t offset, std::int64_t length) const {
    return std::any_of(partitions_.begin(), partitions_.end(), [&](const PartitionPtr& partition) {
        return partition->IsExtentOverlapped(offset, length);
    });
}

PartitionPtr PartitionManager::FindUsedPartition(std::int64_t offset) const {
    const auto found =
        std::find_if(partitions_.begin(), partitions_.end(), [&](const PartitionPtr& partition) {
            return !partition->is_unused() && partition->starting_offset() == offset;
        });
    return found == partitions_.end() ? PartitionPtr() : *found;
}

bool PartitionManager::GetPartitionNumberAtOffset(std::int64_t offset, std::uint32_t& number) const {
    const PartitionPtr partition = FindUsedPartition(offset);
    if (partition) {
        number = partition->entry().PartitionNumber;
    }
    return partition != nullptr;
}

std::vector<PartitionPtr> PartitionManager::SortedPartitions() const {
    std::vector<PartitionPtr> sorted = partitions_;
    std::sort(sorted.begin(), sorted.end(), [](const PartitionPtr& left, const PartitionPtr& right) {
        return left->starting_offset() < right->starting_offset();
    });
    return sorted;
}

}  // namespace bmr_common
