#include "documents/diff/output.h"
#include "documents/diff/texts.h"
#include "documents/show/show.h"

#include <array>

namespace documents::diff {

namespace {

std::string PlaceText(const Place& place) {
    std::string text = place.disk ? "disk " + std::to_string(*place.disk) + " at " : "";
    return text + SizeText(place.start, false) + " (" + SizeText(place.length, false) + ')';
}

template <class List, class TextOf>
std::string Joined(const List& list, const TextOf& text_of) {
    std::string joined;
    for (const auto& element : list) {
        joined += (joined.empty() ? "" : ", ") + text_of(element);
    }
    return joined.empty() ? "nothing" : joined;
}

std::string NumberText(std::uint64_t number, Unit unit) {
    switch (unit) {
        case Unit::kBytes:
            return SizeText(number, false);
        case Unit::kType:
            return TypeText(static_cast<std::uint8_t>(number));
        case Unit::kSignature:
            return SignatureText(static_cast<std::uint32_t>(number));
        case Unit::kSerial:
            return SerialText(static_cast<std::uint32_t>(number));
        case Unit::kPlain:
        case Unit::kQuoted:
            break;
    }
    return std::to_string(number);
}

struct TextOfValue {
    Unit unit;

    std::string operator()(std::monostate /*unknown*/) const { return "unknown"; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(std::uint64_t value) const { return NumberText(value, unit); }
    std::string operator()(const std::string& value) const {
        if (unit == Unit::kQuoted) {
            return '"' + value + '"';
        }
        return value.empty() ? "nothing" : value;
    }
    std::string operator()(const std::vector<std::string>& value) const {
        return Joined(value, [](const std::string& text) { return text; });
    }
    std::string operator()(const std::vector<Place>& value) const { return Joined(value, PlaceText); }
};

std::string TextOf(const Value& value, Unit unit) {
    return std::visit(TextOfValue{unit}, value);
}

// Two sizes that differ but look alike in human units are written as bytes.
std::string ExactTextOf(const Value& value, const ValuePair& pair) {
    const bool alike = pair.unit == Unit::kBytes && pair.before != pair.after &&
                       TextOf(pair.before, pair.unit) == TextOf(pair.after, pair.unit);
    return alike ? std::to_string(std::get<std::uint64_t>(value)) + " bytes" : TextOf(value, pair.unit);
}

bool IsEmpty(const Value& value) {
    return value == Value() || value == Value(std::string()) || value == Value(std::vector<std::string>());
}

// "size 500 MiB, file system NTFS"
std::string Described(const Change& change, Value ValuePair::*side) {
    std::string list;
    for (const ValuePair& pair : change.values) {
        const Value& value = pair.*side;
        if (!pair.silent && !IsEmpty(value)) {
            list += list.empty() ? "" : ", ";
            list += pair.words + (pair.words.empty() ? "" : " ") + ExactTextOf(value, pair);
        }
    }
    return list.empty() ? "" : " (" + list + ')';
}

// "file system NTFS, serial number 8E17-A45D"; what is not known is left out, unless it is all there is.
std::string Listed(const Change& change, Value ValuePair::*side, bool with_words) {
    std::string list;
    for (const ValuePair& pair : change.values) {
        const Value& value = pair.*side;
        if (value.index() == 0 && change.values.size() > 1) {
            continue;
        }
        list += list.empty() ? "" : ", ";
        list += with_words && !pair.words.empty() ? pair.words + ' ' : "";
        list += ExactTextOf(value, pair);
    }
    return list;
}

std::string FromTo(const Change& change, const std::string& verb, bool with_words) {
    return verb + " from " + Listed(change, &ValuePair::before, with_words) + " to " +
           Listed(change, &ValuePair::after, with_words);
}

// "is active now, is no longer the boot volume"
std::string Turned(const Change& change) {
    std::string text;
    for (const ValuePair& pair : change.values) {
        text += text.empty() ? "is " : ", is ";
        text += pair.after == Value(true) ? pair.words + " now" : "no longer " + pair.words;
    }
    return text;
}

std::string EventOf(const Change& change) {
    const std::string kind(NameOf(change.kind));
    const bool several = change.values.size() > 1;
    switch (change.kind) {
        case Kind::kAdded:
            return kind + Described(change, &ValuePair::after);
        case Kind::kRemoved:
            return kind + Described(change, &ValuePair::before);
        case Kind::kReplaced:
            return kind + Described(change, &ValuePair::before) + " by another" +
                   Described(change, &ValuePair::after);
        case Kind::kDynamic:
        case Kind::kRole:
            return Turned(change);
        case Kind::kChanged:
            if (std::holds_alternative<bool>(change.values.front().after)) {
                return Turned(change);
            }
            return FromTo(change, change.values.front().words + " changed", false);
        case Kind::kRenumbered:
        case Kind::kResized:
        case Kind::kMoved:
        case Kind::kRetyped:
        case Kind::kConverted:
        case Kind::kRelabelled:
        case Kind::kReformatted:
        case Kind::kRemounted:
            break;
    }
    return FromTo(change, kind, several);
}

}  // namespace

std::string SentenceOf(const Change& change) {
    std::string sentence = change.named.subject + ": " + EventOf(change);
    if (!change.named.guess.empty()) {
        sentence += " (a guess, by " + std::string(change.named.guess) + ')';
    }
    return sentence;
}

}  // namespace documents::diff
