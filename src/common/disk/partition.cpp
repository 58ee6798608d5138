#include "common/disk/partition.h"

#include "common/disk/sizes.h"
#include "common/logger/trace.h"
#include "common/text/byte_range.h"
#include "common/text/raw_value.h"
#include "common/text/safe.h"
#include "common/xml/xml_values.h"

namespace bmr_common {

namespace {

void DumpStyle(std::uint32_t style) {
    // The label and the indentation depend on the style: compatibility C45
    switch (style) {
        case PARTITION_STYLE_MBR:
            GetLogger().Write(kLogInformation, L"    Style: MBR");
            break;
        case PARTITION_STYLE_GPT:
            GetLogger().Write(kLogInformation, L"    Style: GPT");
            break;
        case PARTITION_STYLE_RAW:
            GetLogger().Write(kLogInformation, L"  Partition style: RAW");
            break;
        default:
            GetLogger().Write(kLogInformation, L"  Partition style: %d", style);
            break;
    }
}

void CaptureStyle(CMSXmlNode& parent, std::uint32_t style) {
    // The name of the element depends on the style: compatibility C80
    switch (style) {
        case PARTITION_STYLE_MBR:
            parent.AddTextChild("Style", L"MBR");
            break;
        case PARTITION_STYLE_GPT:
            parent.AddTextChild("Style", L"GPT");
            break;
        case PARTITION_STYLE_RAW:
            parent.AddTextChild("PartitionStyle", L"RAW");
            break;
        default:
            AddNumberElement(parent, "PartitionStyle", static_cast<std::int32_t>(style));
            break;
    }
}

bool HasLength(const wchar_t* function, std::int64_t length) {
    if (length < 1) {
        GetLogger().Write(kLogError, L"%s partition length is less than 1 (%I64i)", function, length);
    }
    return length >= 1;
}

}  // namespace

Partition::Partition() {
    entry_.PartitionStyle = PARTITION_STYLE_RAW;
}

std::uint32_t Partition::style() const {
    return RawValue(entry_.PartitionStyle);
}

void Partition::Initialize(const PARTITION_INFORMATION_EX& entry) {
    safe::MemoryCopy(&entry_, sizeof(entry_), &entry, sizeof(entry));
}

void Partition::DumpInfo() const {
    Traced(L"bmr_common::Partition::DumpInfo", [&] {
        GetLogger().Write(kLogInformation, L"    Partition Number: %d", entry_.PartitionNumber);
        GetLogger().Write(kLogInformation, L"    Dynamic partition: %s", TrueOrFalse(is_dynamic()));
        GetLogger().Write(kLogInformation, L"    Offset: %I64d", starting_offset());
        GetLogger().Write(kLogInformation, L"    Length: %I64d(%.2f GB)", length(),
                          Gigabytes(static_cast<double>(length())));
        GetLogger().Write(kLogInformation, L"    Rewrite Partition: %d", entry_.RewritePartition);
        DumpStyle(style());
    });
}

void Partition::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::Partition::CaptureInfo", [&] {
        parent.AddTextChild("DynamicPartition", TrueOrFalse(is_dynamic()));
        AddNumberElement(parent, "PartitionNumber", entry_.PartitionNumber);
        AddNumberElement(parent, "Offset", starting_offset());
        AddNumberElement(parent, "Length", length());
        parent.AddTextChild("RewritePartition", TrueOrFalse(entry_.RewritePartition != 0));
        CaptureStyle(parent, style());
    });
}

bool Partition::contains_extent(const std::int64_t& offset, const std::int64_t& length) const {
    constexpr const wchar_t* kFunction = L"bmr_common::Partition::contains_extent";
    const std::int64_t start = starting_offset();
    const std::int64_t own_length = this->length();
    if (!HasLength(kFunction, own_length)) {
        return false;
    }
    const std::int64_t end = EndOf(start, own_length);
    const std::int64_t extent_end = EndOf(offset, length);
    if (start == offset && end == extent_end) {
        return true;
    }
    if (offset >= start && extent_end <= end && end > offset) {
        return true;
    }
    if (start != offset) {
        const bool empty_at_the_end = end == extent_end && length == 0;
        if (empty_at_the_end || end <= offset || start >= extent_end) {
            return false;
        }
    }
    GetLogger().Write(
        kLogError,
        L"%s extent (%I64i to %I64i) only partially inside partition (%I64i to %I64i length %I64i).",
        kFunction, offset, LastBefore(extent_end), start, LastBefore(end), own_length);
    return false;
}

bool Partition::IsExtentOverlapped(const std::int64_t& offset, const std::int64_t& length) const {
    const std::int64_t start = starting_offset();
    const std::int64_t own_length = this->length();
    if (!HasLength(L"bmr_common::Partition::IsExtentOverlapped", own_length)) {
        return false;
    }
    if (start == offset) {
        return true;
    }
    const std::int64_t end = EndOf(start, own_length);
    const std::int64_t extent_end = EndOf(offset, length);
    if (end == extent_end) {
        return length != 0;
    }
    return offset < end && start < extent_end;
}

}  // namespace bmr_common
