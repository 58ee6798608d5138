#pragma once

#include "common/windows.h"

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace recorder {

// Which values are replaced, and by what. It is used twice with the same values: first it notes them and
// returns them as they are; after Settle it returns the replacements. They depend on all values together, not
// on a value alone, so that nobody can try out values; the same values noted in the same order give the same
// replacements. A value that was not noted throws std::logic_error.
class Replacements {
public:
    // A text of the same form (letters.h). Equal texts, without regard to case, get equal ones.
    std::wstring Text(const std::wstring& text);

    // The replacement of a text that was noted elsewhere; any other text as it is.
    std::wstring TextIfNoted(const std::wstring& text) const;

    // A GUID stays a GUID: one with a new first number (see Id) and, unless it is the signature of a disk and
    // an offset, a new rest. Zero stays. The order of the GUIDs as texts stays.
    GUID Guid(const GUID& guid);

    // A disk signature, a serial number or a checksum. 0, 1 and the largest number stay; the order stays.
    std::uint32_t Id(std::uint32_t id);

    // A GUID that stays, such as a type. Only before Settle.
    void Keep(const GUID& guid);

    // A text that is replaced in parts, and must not be found as a whole either.
    void NoteWhole(const std::wstring& text);

    // The name of a device by which the library sorts volumes. Its parts must be noted as texts too.
    void NoteOrder(const std::wstring& device);

    void Settle();

    // What was replaced, after Settle.
    struct TextPair {
        std::wstring original;  // as it was noted first
        std::wstring made;
    };
    struct GuidPair {
        GUID original;
        GUID made;
    };
    const std::vector<TextPair>& texts() const noexcept { return text_pairs_; }
    const std::vector<GuidPair>& guids() const noexcept { return guid_pairs_; }
    const std::map<std::uint32_t, std::uint32_t>& ids() const noexcept { return id_pairs_; }
    const std::set<std::wstring>& wholes() const noexcept { return wholes_; }

private:
    void SettleIds(std::mt19937& random);
    void SettleGuids(std::mt19937& random);
    void SettleOrder(std::mt19937& random);
    void SettleTexts(std::mt19937& random);
    bool IsFree(const std::wstring& made) const;
    std::string Seed() const;

    bool settled_ = false;
    std::vector<std::wstring> texts_;            // in the order in which they were noted
    std::map<std::wstring, std::wstring> made_;  // by folded text, in upper case; empty before Settle
    std::set<std::wstring> taken_;
    std::set<std::wstring> order_;
    std::set<std::wstring> wholes_;
    std::set<std::string> kept_;         // texts of GUIDs, as all others
    std::map<std::string, GUID> guids_;  // replacements
    std::set<std::uint32_t> numbers_;    // ids and first numbers of GUIDs
    std::set<std::uint32_t> ids_;
    std::map<std::uint32_t, std::uint32_t> made_numbers_;

    std::vector<TextPair> text_pairs_;
    std::vector<GuidPair> guid_pairs_;
    std::map<std::uint32_t, std::uint32_t> id_pairs_;
};

}  // namespace recorder
