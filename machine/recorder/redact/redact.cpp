#include "machine/recorder/redact/redact.h"

#include "machine/description/text.h"
#include "machine/recorder/observe/answer_texts.h"
#include "machine/recorder/redact/redact_bytes.h"
#include "machine/recorder/redact/redact_texts.h"

#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace recorder {
namespace {

void RedactTexts(Content content, Part& part, Replacements& replacements) {
    part.bytes = RedactedTexts(content, part.bytes, replacements);
}

// Bytes that are no text and not known as harmless become 0, as do numbers.
void RedactUnknown(Part& part) {
    constexpr std::wstring_view kTruth = L"VT_BOOL";
    part.value = part.type == kTruth ? part.value : 0;
    part.bytes.assign(part.bytes.size(), 0);
}

void RedactVolume(Part& part, Replacements& replacements) {
    const Content content = ContentOf(VolumeTable(), part.name);
    if (content == Content::kId) {
        part.value = replacements.Id(static_cast<std::uint32_t>(part.value));
    } else {
        RedactTexts(content, part, replacements);
    }
}

void RedactProperty(const std::wstring& wmi_class, Part& part, Replacements& replacements) {
    const Content content = ContentOfProperty(wmi_class, part.name);
    if (part.type.ends_with(L"VT_BSTR")) {
        RedactTexts(content, part, replacements);
    } else if (content == Content::kId) {
        // An unsigned number comes with a sign; the upper half of `value` is the sign's.
        const bool negative = static_cast<std::int64_t>(part.value) < 0;
        const std::uint32_t id = replacements.Id(static_cast<std::uint32_t>(part.value));
        const bool is_signed = part.type == L"VT_I4" || part.type == L"VT_INT" || negative;
        part.value = is_signed ? static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(id)}) : id;
    } else if (content != Content::kWord && content != Content::kStays) {
        RedactUnknown(part);
    }
}

void RedactRegistryValue(Part& part, Replacements& replacements) {
    const Content content = ContentOf(RegistryTable(), part.name);
    const bool text = part.value == REG_SZ || part.value == REG_EXPAND_SZ || part.value == REG_MULTI_SZ;
    if (text) {
        RedactTexts(content, part, replacements);
    } else if (content != Content::kWord && content != Content::kStays) {
        part.bytes.assign(part.bytes.size(), 0);
    }
}

void RedactPart(PartForm form, const Question& question, Part& part, Replacements& replacements) {
    switch (form) {
        case PartForm::kNone:
            break;
        case PartForm::kNames:
            part.name = RedactedText(Content::kPath, part.name, replacements);
            break;
        case PartForm::kVolume:
            RedactVolume(part, replacements);
            break;
        case PartForm::kWmi:
            RedactProperty(question.object, part, replacements);
            break;
        case PartForm::kRegistry:
            RedactRegistryValue(part, replacements);
            break;
    }
}

Observation RedactedObservation(Observation observation, Replacements& replacements) {
    const CallRow* row = FindCall(observation.question.call);
    if (row == nullptr) {
        throw std::logic_error("it is not known what is private in the answer of " +
                               observation.question.call);
    }
    const Question question = observation.question;
    observation.question.object = RedactedText(row->object, question.object, replacements);
    observation.answer.bytes = RedactedBytes(row->bytes, observation.answer.bytes, replacements);
    for (Part& part : observation.answer.parts) {
        RedactPart(row->parts, question, part, replacements);
    }
    return observation;
}

// The library sorts volumes by the devices to which their names lead.
void NoteOrderOfDevices(const Observation& observation, Replacements& replacements) {
    const bool names_volume = observation.question.call == "QueryDosDeviceW" &&
                              machine::StartsWith(observation.question.object, L"Volume{");
    if (names_volume) {
        for (const std::wstring& device : TextsOf(observation.answer.bytes)) {
            replacements.NoteOrder(device);
        }
    }
}

}  // namespace

Observations Redact(const Observations& observations, Replacements& replacements) {
    for (const Observation& observation : observations.all()) {
        RedactedObservation(observation, replacements);
        NoteOrderOfDevices(observation, replacements);
    }
    replacements.Settle();
    Observations redacted;
    redacted.circumstances = observations.circumstances;
    redacted.circumstances.redacted = true;
    for (const Observation& observation : observations.all()) {
        redacted.Add(RedactedObservation(observation, replacements));
    }
    return redacted;
}

}  // namespace recorder
