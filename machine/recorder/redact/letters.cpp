#include "machine/recorder/redact/letters.h"

#include "common/windows.h"

#include <algorithm>
#include <vector>

namespace recorder {
namespace {

constexpr wchar_t kFirstOutsideAscii = 0x80;
constexpr wchar_t kToLowerCase = 0x20;  // in all ranges of letters below

// Upper case of letters that replace others. Ideographs have no case.
constexpr UnitRange kDigits = {L'0', 10};
constexpr UnitRange kLatin = {L'A', 26};
constexpr UnitRange kLatin1 = {0xC0, 23};
constexpr UnitRange kCyrillic = {0x410, 32};
constexpr UnitRange kIdeographs = {0x4E00, 20'000};
// Planes of further ideographs: the first unit of a surrogate pair.
constexpr UnitRange kIdeographPairs = {0xD840, 41};
constexpr UnitRange kHighSurrogates = {0xD800, 0x400};
constexpr UnitRange kLowSurrogates = {0xDC00, 0x400};

constexpr wchar_t kFirstBehindLatin1 = 0x100;
constexpr wchar_t kFirstOfThreeBytes = 0x800;  // in UTF-8

bool IsIn(UnitRange range, wchar_t unit) {
    return unit >= range.first && unit < range.first + range.count;
}

std::vector<wchar_t> FoldedOfAllUnits() {
    std::vector<wchar_t> all(0x10000);
    for (std::size_t unit = 0; unit < all.size(); ++unit) {
        const auto own = static_cast<wchar_t>(unit);
        wchar_t folded = own;
        if (own >= kFirstOutsideAscii) {
            LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, &own, 1, &folded, 1);
            folded = folded < kFirstOutsideAscii ? own : folded;
        } else if (own >= L'a' && own <= L'z') {
            folded = static_cast<wchar_t>(own - kToLowerCase);
        }
        all[unit] = folded;
    }
    return all;
}

bool HasLowerCase(wchar_t upper) {
    return IsIn(kLatin, upper) || IsIn(kLatin1, upper) || IsIn(kCyrillic, upper);
}

}  // namespace

wchar_t FoldedUnit(wchar_t unit) {
    static const std::vector<wchar_t> folded = FoldedOfAllUnits();
    return folded[unit];
}

std::wstring FoldedUnits(std::wstring_view text) {
    std::wstring folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), FoldedUnit);
    return folded;
}

bool TellsNothing(std::wstring_view text) {
    constexpr std::ptrdiff_t kFewDigits = 3;
    const auto count = [&](auto condition) { return std::count_if(text.begin(), text.end(), condition); };
    const auto others = count([](wchar_t unit) { return unit >= kFirstOutsideAscii; });
    const auto letters = count([](wchar_t unit) { return IsIn(kLatin, FoldedUnit(unit)); });
    const auto digits = count([](wchar_t unit) { return IsIn(kDigits, unit); });
    const auto zeros = count([](wchar_t unit) { return unit == L'0'; });
    return others == 0 &&
           (letters + digits <= 1 || (letters == 0 && (digits <= kFewDigits || digits == zeros)));
}

UnitRange ReplacementsOf(std::wstring_view folded, std::size_t position) {
    const wchar_t unit = folded[position];
    if (IsIn(kDigits, unit)) {
        return kDigits;
    }
    if (unit < kFirstOutsideAscii) {
        return IsIn(kLatin, unit) ? kLatin : UnitRange();
    }
    if (IsIn(kHighSurrogates, unit)) {
        const bool pair = position + 1 < folded.size() && IsIn(kLowSurrogates, folded[position + 1]);
        return pair ? kIdeographPairs : kHighSurrogates;
    }
    if (IsIn(kLowSurrogates, unit)) {
        return kLowSurrogates;
    }
    return unit < kFirstBehindLatin1 ? kLatin1 : unit < kFirstOfThreeBytes ? kCyrillic : kIdeographs;
}

std::wstring MadeText(std::wstring_view folded, std::mt19937& random) {
    std::wstring made(folded);
    for (std::size_t i = 0; i < made.size(); ++i) {
        const UnitRange range = ReplacementsOf(folded, i);
        made[i] = range.count == 0 ? made[i] : static_cast<wchar_t>(range.first + random() % range.count);
    }
    return made;
}

std::wstring WithCaseOf(std::wstring_view original, std::wstring_view made) {
    std::wstring text(made);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool lower = FoldedUnit(original[i]) != original[i] && HasLowerCase(text[i]);
        text[i] = lower ? static_cast<wchar_t>(text[i] + kToLowerCase) : text[i];
    }
    return text;
}

}  // namespace recorder
