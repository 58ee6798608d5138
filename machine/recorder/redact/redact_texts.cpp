#include "machine/recorder/redact/redact_texts.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/known_names.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/name_parts.h"

#include <algorithm>

namespace recorder {
namespace {

using Kind = NamePart::Kind;

// In the case of the digits of the original.
std::wstring RedactedGuid(const std::wstring& text, Replacements& replacements) {
    const GUID made = replacements.Guid(*machine::ParseGuid(machine::Narrow(text)));
    const std::wstring lower = machine::Widen(machine::GuidText(made));
    const bool upper =
        std::any_of(text.begin(), text.end(), [](wchar_t c) { return c >= L'A' && c <= L'F'; });
    return upper ? FoldedUnits(lower) : lower;
}

std::wstring RedactedPath(const std::wstring& path, Replacements& replacements) {
    std::wstring redacted;
    bool folders = false;  // behind a drive
    for (const NamePart& part : PartsOf(path, L"\\")) {
        const bool known = folders ? IsKnownFolder(part.text) : IsKnownDeviceName(part.text);
        if (part.kind == Kind::kGuid) {
            redacted += RedactedGuid(part.text, replacements);
        } else if (part.kind == Kind::kSeparator || known) {
            redacted += part.text;
        } else {
            redacted += replacements.Text(part.text);
        }
        folders = folders || (part.text.size() == 2 && machine::DriveNumber(part.text));
    }
    return redacted;
}

std::wstring RedactedName(const std::wstring& name, Replacements& replacements) {
    const std::vector<NamePart> parts = PartsOf(name, L"\\.@/");
    if (parts.size() > 1) {
        replacements.NoteWhole(name);
    }
    std::wstring redacted;
    for (const NamePart& part : parts) {
        redacted += part.kind == Kind::kGuid        ? RedactedGuid(part.text, replacements)
                    : part.kind == Kind::kSeparator ? part.text
                                                    : replacements.Text(part.text);
    }
    return redacted;
}

std::wstring RedactedTextAndPaths(const std::wstring& text, Replacements& replacements) {
    std::wstring redacted;
    bool first = true;
    for (const NamePart& part : PartsOf(text, L"|")) {
        const bool path = !first && part.kind != Kind::kSeparator;
        redacted += path ? RedactedPath(part.text, replacements) : replacements.TextIfNoted(part.text);
        first = false;
    }
    return redacted;
}

// "BUS\MODEL\INSTANCE"
std::wstring RedactedInstance(const std::wstring& id, Replacements& replacements) {
    const std::size_t model = id.find(L'\\');
    const std::size_t instance = model == std::wstring::npos ? model : id.find(L'\\', model + 1);
    if (instance == std::wstring::npos) {
        return replacements.Text(id);
    }
    return id.substr(0, instance + 1) + replacements.Text(id.substr(instance + 1));
}

// Options whose values the system chooses.
bool IsPlainOption(const std::wstring& name) {
    constexpr std::wstring_view kPlain[] = {
        L"NOEXECUTE", L"/NOEXECUTE", L"FVEBOOT", L"HYPERVISORLAUNCHTYPE", L"SAFEBOOT",    L"DEBUGPORT",
        L"BAUDRATE",  L"REDIRECT",   L"EMS",     L"TSCSYNCPOLICY",        L"NUMPROC",     L"MAXMEM",
        L"TIMERES",   L"PCIE",       L"BOOTLOG", L"VSMLAUNCHTYPE",        L"XSAVEPOLICY",
    };
    return std::any_of(std::begin(kPlain), std::end(kPlain),
                       [&](std::wstring_view plain) { return machine::EqualNames(plain, name); });
}

std::wstring RedactedOptions(const std::wstring& options, Replacements& replacements) {
    std::wstring redacted;
    for (const NamePart& option : PartsOf(options, L" ")) {
        const std::size_t equals = option.text.find(L'=');
        const bool plain = equals == std::wstring::npos || IsPlainOption(option.text.substr(0, equals));
        redacted += plain ? option.text
                          : option.text.substr(0, equals + 1) +
                                RedactedName(option.text.substr(equals + 1), replacements);
    }
    return redacted;
}

}  // namespace

std::wstring RedactedText(Content content, const std::wstring& text, Replacements& replacements) {
    switch (content) {
        case Content::kStays:
            return replacements.TextIfNoted(text);
        case Content::kWord:
            return text;
        case Content::kName:
            return RedactedName(text, replacements);
        case Content::kPath:
            return RedactedPath(text, replacements);
        case Content::kTextAndPaths:
            return RedactedTextAndPaths(text, replacements);
        case Content::kInstance:
            return RedactedInstance(text, replacements);
        case Content::kPartition:
            return IsKnownPartitionName(text) ? text : replacements.Text(text);
        case Content::kOptions:
            return RedactedOptions(text, replacements);
        case Content::kText:
        case Content::kId:  // an id that is no number
            break;
    }
    return replacements.Text(text);
}

}  // namespace recorder
