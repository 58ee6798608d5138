#include "machine/recorder/prove/answer_words.h"

#include "machine/description/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace recorder {
namespace {

constexpr std::size_t kMostParts = 5;
constexpr std::uint32_t kSevere = 0x80000000;  // an NTSTATUS or HRESULT, written in hexadecimal

std::string CodeText(std::uint32_t code) {
    if ((code & kSevere) == 0) {
        return std::to_string(code);
    }
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(code));
    return text.data();
}

std::string Outcome(const Answer& answer) {
    if (answer.blocks) {
        return "no answer";
    }
    const std::string step = answer.step.empty() ? "" : answer.step + " ";
    if (answer.crashed) {
        return "the asking process ended with " + CodeText(answer.error);
    }
    return answer.error == 0 ? "success" : step + "error " + CodeText(answer.error);
}

std::string HereAndThere(const std::string& what, std::uint64_t here, std::uint64_t there) {
    return what + std::to_string(here) + " here, " + what + std::to_string(there) + " there";
}

std::string FirstDifferentByte(const Bytes& here, const Bytes& there) {
    if (here.size() != there.size()) {
        return std::to_string(here.size()) + " bytes here, " + std::to_string(there.size()) + " there";
    }
    const auto [own, other] = std::mismatch(here.begin(), here.end(), there.begin(), there.end());
    return "byte " + std::to_string(own - here.begin()) + " is " + std::to_string(*own) + " here, " +
           std::to_string(*other) + " there";
}

std::string NameOf(const Part& part) {
    return (part.instance == 0 ? "" : std::to_string(part.instance) + " ") + machine::Narrow(part.name);
}

std::string PartInWords(const Part& part) {
    if (part.error != 0) {
        return "error " + CodeText(part.error);
    }
    const std::string type = part.type.empty() ? "" : machine::Narrow(part.type) + " ";
    return type +
           (part.bytes.empty() ? std::to_string(part.value) : std::to_string(part.bytes.size()) + " bytes");
}

const Part* Find(const std::vector<Part>& parts, const Part& like) {
    const auto found = std::find_if(parts.begin(), parts.end(), [&](const Part& part) {
        return part.instance == like.instance && machine::EqualNames(part.name, like.name);
    });
    return found == parts.end() ? nullptr : &*found;
}

// A property that cannot be found is no property.
bool IsNothing(const Part& part) {
    constexpr std::uint32_t kPropertyNotFound = 0x80041002;  // WBEM_E_NOT_FOUND
    return part.error == kPropertyNotFound;
}

bool SameValue(const Part& left, const Part& right) {
    return left.type == right.type && left.error == right.error && left.value == right.value &&
           left.bytes == right.bytes;
}

// How a part differs from that of the other answer, which may have none: "LABEL 8 bytes here, 6 bytes there".
std::string PartsInWords(const Part& part, const Part* other) {
    const std::string own_words = PartInWords(part);
    const std::string other_words = other == nullptr ? "nothing" : PartInWords(*other);
    return NameOf(part) + (own_words != other_words ? " " + own_words + " here, " + other_words + " there"
                                                    : " one value here, another one there");
}

// The parts of one answer that the other one has otherwise or not at all.
std::vector<std::string> DifferentParts(const std::vector<Part>& here, const std::vector<Part>& there) {
    std::vector<std::string> words;
    for (const Part& part : here) {
        const Part* other = Find(there, part);
        if (other == nullptr ? !IsNothing(part) : !SameValue(*other, part)) {
            words.push_back(PartsInWords(part, other));
        }
    }
    for (const Part& part : there) {
        if (Find(here, part) == nullptr && !IsNothing(part)) {
            words.push_back(NameOf(part) + " nothing here, " + PartInWords(part) + " there");
        }
    }
    return words;
}

std::string InOneLine(const std::vector<std::string>& parts) {
    std::string line;
    for (std::size_t i = 0; i < std::min(parts.size(), kMostParts); ++i) {
        line += (i == 0 ? "" : "; ") + parts[i];
    }
    return parts.size() > kMostParts ? line + "; " + std::to_string(parts.size() - kMostParts) + " more"
                                     : line;
}

}  // namespace

std::string DifferenceInWords(const Observation& here, const Answer& there) {
    const Answer& own = here.answer;
    if (Outcome(own) != Outcome(there)) {
        return Outcome(own) + " here, " + Outcome(there) + " there";
    }
    if (own.value != there.value) {
        return HereAndThere("", own.value, there.value);
    }
    if (own.returned != there.returned) {
        return HereAndThere("length ", own.returned, there.returned);
    }
    if (own.bytes != there.bytes) {
        return FirstDifferentByte(own.bytes, there.bytes);
    }
    const std::vector<std::string> parts = DifferentParts(own.parts, there.parts);
    return parts.empty() ? "another order" : InOneLine(parts);
}

}  // namespace recorder
