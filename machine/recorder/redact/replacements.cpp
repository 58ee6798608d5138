#include "machine/recorder/redact/replacements.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/device_order.h"
#include "machine/recorder/redact/known_names.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/name_parts.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace recorder {
namespace {

constexpr int kAttempts = 1000;

bool Stays(std::uint32_t id) {
    return id <= 1 || id == UINT32_MAX;
}

// "{SSSSSSSS-0000-0000-OOOO-OOOOOOOOOOOO}": the signature of a disk and an offset on it.
bool IsSignatureAndOffset(const GUID& guid) {
    return guid.Data2 == 0 && guid.Data3 == 0 && guid.Data4[0] == 0 && guid.Data4[1] == 0;
}

// `count` different numbers that do not stay, in order.
std::set<std::uint32_t> MadeNumbers(std::size_t count, const std::set<std::uint32_t>& originals,
                                    std::mt19937& random) {
    std::set<std::uint32_t> made;
    while (made.size() < count) {
        const auto number = static_cast<std::uint32_t>(random());
        if (!Stays(number) && !originals.contains(number)) {
            made.insert(number);
        }
    }
    return made;
}

// A random rest of a GUID, with version and variant of the original.
GUID MadeGuid(const GUID& original, std::uint32_t first, std::mt19937& random) {
    constexpr unsigned kVersion = 0xF000;
    constexpr unsigned kVariant = 0xC0;
    GUID made{};
    made.Data1 = first;
    made.Data2 = static_cast<unsigned short>(random());
    made.Data3 = static_cast<unsigned short>((random() & ~kVersion) | (original.Data3 & kVersion));
    for (unsigned char& byte : made.Data4) {
        byte = static_cast<unsigned char>(random());
    }
    made.Data4[0] = static_cast<unsigned char>((made.Data4[0] & ~kVariant) | (original.Data4[0] & kVariant));
    return made;
}

GUID GuidIn(const std::string& text) {
    return *machine::ParseGuid(text);
}

}  // namespace

std::wstring Replacements::Text(const std::wstring& text) {
    if (TellsNothing(text)) {
        return text;
    }
    const std::wstring folded = FoldedUnits(text);
    if (!settled_) {
        if (made_.try_emplace(folded).second) {
            texts_.push_back(text);
        }
        return text;
    }
    const auto found = made_.find(folded);
    if (found == made_.end()) {
        throw std::logic_error("a text was not noted");
    }
    return WithCaseOf(text, found->second);
}

std::wstring Replacements::TextIfNoted(const std::wstring& text) const {
    const auto found = made_.find(FoldedUnits(text));
    return settled_ && found != made_.end() ? WithCaseOf(text, found->second) : text;
}

GUID Replacements::Guid(const GUID& guid) {
    const std::string text = machine::GuidText(guid);
    if (IsEqualGUID(guid, GUID{})) {
        return guid;
    }
    if (!settled_) {
        guids_.emplace(text, guid);
        numbers_.insert(guid.Data1);
        return guid;
    }
    const auto found = guids_.find(text);
    if (found == guids_.end()) {
        throw std::logic_error("a GUID was not noted");
    }
    return found->second;
}

std::uint32_t Replacements::Id(std::uint32_t id) {
    if (Stays(id)) {
        return id;
    }
    if (!settled_) {
        ids_.insert(id);
        numbers_.insert(id);
        return id;
    }
    const auto found = made_numbers_.find(id);
    if (found == made_numbers_.end()) {
        throw std::logic_error("an id was not noted");
    }
    return found->second;
}

void Replacements::Keep(const GUID& guid) {
    kept_.insert(machine::GuidText(guid));
}

void Replacements::NoteWhole(const std::wstring& text) {
    if (!TellsNothing(text)) {
        wholes_.insert(text);
    }
}

void Replacements::NoteOrder(const std::wstring& device) {
    order_.insert(device);
}

std::string Replacements::Seed() const {
    std::string seed;
    for (const std::wstring& text : texts_) {
        seed += machine::Narrow(text) + '\n';
    }
    for (const auto& [text, guid] : guids_) {
        seed += text;
    }
    for (const std::uint32_t id : ids_) {
        seed += std::to_string(id) + '\n';
    }
    return seed;
}

void Replacements::Settle() {
    std::mt19937 random(machine::DerivedNumber(Seed()));
    settled_ = true;
    SettleIds(random);
    SettleGuids(random);
    SettleOrder(random);
    SettleTexts(random);
    for (const std::wstring& text : texts_) {
        text_pairs_.push_back({text, WithCaseOf(text, made_[FoldedUnits(text)])});
    }
    for (const std::uint32_t id : ids_) {
        id_pairs_.emplace(id, made_numbers_[id]);
    }
}

void Replacements::SettleIds(std::mt19937& random) {
    const std::set<std::uint32_t> made = MadeNumbers(numbers_.size(), numbers_, random);
    auto next = made.begin();
    for (const std::uint32_t number : numbers_) {
        made_numbers_.emplace(number, Stays(number) ? number : *next);
        ++next;
    }
}

// GUIDs with the same first number get new rests, which are put in order.
void Replacements::SettleGuids(std::mt19937& random) {
    std::map<std::uint32_t, std::vector<std::string>> by_number;
    for (const auto& [text, guid] : guids_) {
        const bool plain = !kept_.contains(text) && !IsSignatureAndOffset(guid);
        if (plain) {
            by_number[guid.Data1].push_back(text);
        }
    }
    for (auto& [text, guid] : guids_) {
        guid.Data1 = kept_.contains(text) ? guid.Data1 : made_numbers_[guid.Data1];
    }
    for (const auto& [number, texts] : by_number) {
        std::vector<std::string> made;
        for (const std::string& text : texts) {
            made.push_back(machine::GuidText(MadeGuid(GuidIn(text), made_numbers_[number], random)));
        }
        std::sort(made.begin(), made.end());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            guids_[texts[i]] = GuidIn(made[i]);
        }
    }
    for (const auto& [text, guid] : guids_) {
        if (!kept_.contains(text)) {
            guid_pairs_.push_back({GuidIn(text), guid});
        }
    }
}

// Whether no other text is or becomes this one, and it is no name of the system.
bool Replacements::IsFree(const std::wstring& made) const {
    return !made_.contains(made) && !taken_.contains(made) && !IsKnownDeviceName(made) &&
           !IsKnownFolder(made);
}

void Replacements::SettleOrder(std::mt19937& random) {
    std::vector<OrderedPart> ordered;
    for (const std::wstring& device : order_) {
        const std::vector<NamePart> parts = PartsOf(device, L"\\");
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (parts[i].kind == NamePart::Kind::kText) {
                const wchar_t behind = i + 1 < parts.size() ? parts[i + 1].text.front() : L'\0';
                ordered.push_back({parts[i].text, behind, !made_.contains(FoldedUnits(parts[i].text)), {}});
            }
        }
    }
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        MakeInOrder(ordered, random);
        const bool free = std::all_of(ordered.begin(), ordered.end(), [&](const OrderedPart& part) {
            return part.stays || IsFree(FoldedUnits(part.made));
        });
        if (free) {
            break;
        }
    }
    for (const OrderedPart& part : ordered) {
        if (!part.stays) {
            made_[FoldedUnits(part.text)] = FoldedUnits(part.made);
            taken_.insert(FoldedUnits(part.made));
        }
    }
}

void Replacements::SettleTexts(std::mt19937& random) {
    for (const std::wstring& text : texts_) {
        const std::wstring folded = FoldedUnits(text);
        std::wstring& made = made_[folded];
        if (!made.empty()) {
            continue;  // ordered
        }
        // After that many attempts there is none left; a text that stays is found by the search.
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            made = MadeText(folded, random);
            if (IsFree(made)) {
                break;
            }
        }
        taken_.insert(made);
    }
}

}  // namespace recorder
