#include "machine/recorder/redact/redact_bytes.h"

#include "common/windows.h"
#include "machine/description/newer_members.h"
#include "machine/description/text.h"
#include "machine/recorder/redact/redact_texts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

namespace recorder {
namespace {

// The places of values in the structures.
namespace layout {
constexpr std::size_t kStyle = 0;
constexpr std::size_t kMbrSignature = 8;
constexpr std::size_t kMbrChecksum = machine::kMbrLayoutChecksum;
constexpr std::size_t kGptDiskId = 8;
constexpr std::size_t kEntries = 48;
}  // namespace layout

namespace older_layout {
constexpr std::size_t kSignature = 4;
}

namespace entry {
constexpr std::size_t kStyle = 0;
constexpr std::size_t kMbrId = machine::kMbrPartitionId;
constexpr std::size_t kGptType = 32;
constexpr std::size_t kGptId = 48;
constexpr std::size_t kGptName = 72;
constexpr std::size_t kGptNameUnits = 36;
constexpr std::size_t kSize = 144;
}  // namespace entry

namespace geometry {
constexpr std::size_t kStyle = 36;
constexpr std::size_t kMbrSignature = 40;
constexpr std::size_t kMbrChecksum = 44;
constexpr std::size_t kGptDiskId = 40;
}  // namespace geometry

// The bytes of one answer, being redacted.
class Structure {
public:
    Structure(Bytes bytes, Replacements& replacements)
        : bytes_(std::move(bytes)), replacements_(replacements) {}

    Bytes Take() { return std::move(bytes_); }
    std::size_t size() const { return bytes_.size(); }

    bool IsMbr(std::size_t style) const {
        std::uint32_t number = PARTITION_STYLE_RAW;
        if (Has(style, sizeof(number))) {
            std::memcpy(&number, bytes_.data() + style, sizeof(number));
        }
        return number == PARTITION_STYLE_MBR;
    }

    void Id(std::size_t offset) {
        Change<std::uint32_t>(offset, [&](std::uint32_t id) { return replacements_.Id(id); });
    }

    void Guid(std::size_t offset) {
        Change<GUID>(offset, [&](const GUID& guid) { return replacements_.Guid(guid); });
    }

    void Keep(std::size_t offset) {
        GUID guid{};
        if (Has(offset, sizeof(guid))) {
            std::memcpy(&guid, bytes_.data() + offset, sizeof(guid));
            replacements_.Keep(guid);
        }
    }

    // A text in a member of a fixed size. What stands behind its terminator is left out.
    void Text(std::size_t offset, std::size_t units, Content content) {
        if (!Has(offset, units * sizeof(wchar_t))) {
            Clear(offset, units * sizeof(wchar_t));
            return;
        }
        std::wstring text(units, L'\0');
        std::memcpy(text.data(), bytes_.data() + offset, units * sizeof(wchar_t));
        text.resize(std::min(text.find(L'\0'), text.size()));
        text = RedactedText(content, text, replacements_);
        text.resize(units);
        std::memcpy(bytes_.data() + offset, text.data(), units * sizeof(wchar_t));
    }

private:
    bool Has(std::size_t offset, std::size_t size) const {
        return offset <= bytes_.size() && bytes_.size() - offset >= size;
    }

    void Clear(std::size_t offset, std::size_t size) {
        const std::size_t first = std::min(offset, bytes_.size());
        std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(first),
                    std::min(size, bytes_.size() - first), std::uint8_t{0});
    }

    template <class Value, class Function>
    void Change(std::size_t offset, Function change) {
        if (!Has(offset, sizeof(Value))) {
            Clear(offset, sizeof(Value));
            return;
        }
        Value value{};
        std::memcpy(&value, bytes_.data() + offset, sizeof(value));
        value = change(value);
        std::memcpy(bytes_.data() + offset, &value, sizeof(value));
    }

    Bytes bytes_;
    Replacements& replacements_;
};

void RedactEntry(Structure& structure, std::size_t start) {
    if (structure.IsMbr(start + entry::kStyle)) {
        structure.Guid(start + entry::kMbrId);
        return;
    }
    structure.Keep(start + entry::kGptType);
    structure.Guid(start + entry::kGptId);
    structure.Text(start + entry::kGptName, entry::kGptNameUnits, Content::kPartition);
}

void RedactLayoutEx(Structure& structure) {
    if (structure.IsMbr(layout::kStyle)) {
        structure.Id(layout::kMbrSignature);
        structure.Id(layout::kMbrChecksum);
    } else {
        structure.Guid(layout::kGptDiskId);
    }
    for (std::size_t start = layout::kEntries; start < structure.size(); start += entry::kSize) {
        RedactEntry(structure, start);
    }
}

void RedactGeometry(Structure& structure) {
    if (structure.IsMbr(geometry::kStyle)) {
        structure.Id(geometry::kMbrSignature);
        structure.Id(geometry::kMbrChecksum);
    } else {
        structure.Guid(geometry::kGptDiskId);
    }
}

}  // namespace

Bytes RedactedTexts(Content content, const Bytes& bytes, Replacements& replacements) {
    const std::wstring all = machine::WideText(bytes);
    std::wstring redacted;
    for (const std::wstring& text : machine::TerminatedTexts(all)) {
        redacted += RedactedText(content, text, replacements) + L'\0';
    }
    redacted.resize(all.size());  // without a terminator that the last text did not have
    Bytes result(bytes.size());   // an odd byte at the end is part of no unit and becomes 0
    std::copy_n(reinterpret_cast<const std::uint8_t*>(redacted.data()), redacted.size() * sizeof(wchar_t),
                result.begin());
    return result;
}

Bytes RedactedBytes(Form form, const Bytes& bytes, Replacements& replacements) {
    Structure structure(bytes, replacements);
    switch (form) {
        case Form::kNone:
            break;
        case Form::kPaths:
            return RedactedTexts(Content::kPath, bytes, replacements);
        case Form::kGeometry:
            RedactGeometry(structure);
            break;
        case Form::kLayout:
            structure.Id(older_layout::kSignature);
            break;
        case Form::kLayoutEx:
            RedactLayoutEx(structure);
            break;
        case Form::kPartition:
            RedactEntry(structure, 0);
            break;
    }
    return structure.Take();
}

}  // namespace recorder
