#include "machine/recorder/redact/searched_texts.h"

#include "machine/description/text.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/redaction_table.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

namespace recorder {
namespace {

using Json = nlohmann::ordered_json;

// Keys of a description whose values are words of the format, which are not searched.
constexpr std::string_view kFormatKeys[] = {
    "type", "style", "driveType", "mediaType", "recording", "recognition", "missing", "extentsShortAnswer",
};

bool IsFormatKey(const std::string& key) {
    return std::find(std::begin(kFormatKeys), std::end(kFormatKeys), key) != std::end(kFormatKeys);
}

bool IsWordKey(const std::string& key) {
    return key == "fileSystem" || key == "currentDrive";
}

// The objects whose keys are names of the machine and not of the format.
bool HasNamesAsKeys(const std::string& place) {
    return place == "/dosDevices" || place == "/directories" || place.starts_with("/registry");
}

bool IsWordProperty(const std::wstring& name) {
    const auto tables = WmiTable();
    return std::any_of(tables.begin(), tables.end(),
                       [&](const WmiRow& row) { return ContentOf(row.values, name) == Content::kWord; });
}

// Collects texts, each of which is searched only once for each place of its kind.
class Collector {
public:
    void Add(std::wstring_view text, const std::string& place, bool word, bool readable = true) {
        std::wstring folded = FoldedUnits(text);
        if (!folded.empty() && known_.insert({folded, word, readable}).second) {
            texts_.push_back({std::move(folded), place, word, readable});
        }
    }

    void AddBytes(const Bytes& bytes, const std::string& place, bool word) {
        std::wstring units(bytes.begin(), bytes.end());
        Add(units, place, word, false);
        for (std::size_t start = 0; start < 2; ++start) {
            std::wstring text;
            for (std::size_t i = start; i + 1 < bytes.size(); i += 2) {
                text += static_cast<wchar_t>(bytes[i] | bytes[i + 1] << 8);
            }
            Add(text, place, word, start == 0);
        }
    }

    std::vector<SearchedText> Take() { return std::move(texts_); }

private:
    struct Known {
        std::wstring text;
        bool word;
        bool readable;

        bool operator<(const Known& other) const {
            return std::tie(text, word, readable) < std::tie(other.text, other.word, other.readable);
        }
    };
    std::set<Known> known_;
    std::vector<SearchedText> texts_;
};

bool IsWord(const CallRow* row, const Question& question, const Part& part) {
    if (row == nullptr) {
        return false;
    }
    switch (row->parts) {
        case PartForm::kVolume:
            return ContentOf(VolumeTable(), part.name) == Content::kWord;
        case PartForm::kWmi:
            return ContentOfProperty(question.object, part.name) == Content::kWord;
        case PartForm::kRegistry:
            return ContentOf(RegistryTable(), part.name) == Content::kWord;
        case PartForm::kNone:
        case PartForm::kNames:
            break;
    }
    return false;
}

void AddPart(const CallRow* row, const Question& question, const Part& part, const std::string& place,
             Collector& collector) {
    const bool word = IsWord(row, question, part);
    // The names of properties and members are the same on all machines.
    const bool named_by_machine =
        row == nullptr || row->parts == PartForm::kNames || row->parts == PartForm::kRegistry;
    const std::string own = place + (named_by_machine ? ", a name" : ", " + machine::Narrow(part.name));
    if (named_by_machine) {
        collector.Add(part.name, own, row != nullptr && row->parts == PartForm::kRegistry);
    }
    collector.Add(part.type, own, true);
    collector.AddBytes(part.bytes, own, word);
    if (part.value != 0) {
        collector.Add(std::to_wstring(part.value), own, true);
    }
}

std::vector<std::uint8_t> HexBytes(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    std::string digits;
    for (const char c : text) {
        const bool hexadecimal = std::string_view("0123456789abcdefABCDEF").find(c) != std::string_view::npos;
        if (!hexadecimal && c != ' ') {
            return {};
        }
        if (hexadecimal) {
            digits += c;
        }
        if (digits.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

// The units of an object with the key "utf16".
std::optional<std::wstring> Utf16In(const Json& json) {
    if (!json.is_object() || json.size() != 1 || !json.contains("utf16") || !json["utf16"].is_string()) {
        return std::nullopt;
    }
    std::wstring text;
    const std::vector<std::uint8_t> bytes = HexBytes(json["utf16"].get<std::string>());
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text += static_cast<wchar_t>(bytes[i] << 8 | bytes[i + 1]);
    }
    return text;
}

// `word` is whether the value belongs to a key of words; the elements of lists and objects inherit it.
void AddJson(const Json& json, const std::string& place, bool word, Collector& collector) {
    if (const auto text = Utf16In(json)) {
        collector.Add(*text, place, word);
    } else if (json.is_object()) {
        for (const auto& [key, value] : json.items()) {
            const std::wstring name = machine::Widen(key);
            const bool known = IsWordKey(key) || IsWordProperty(name);
            if (HasNamesAsKeys(place)) {
                collector.Add(name, place, false);
            }
            if (IsFormatKey(key) && !HasNamesAsKeys(place)) {
                continue;
            }
            AddJson(value, std::string(place).append("/").append(key), word || known, collector);
        }
    } else if (json.is_array()) {
        for (std::size_t i = 0; i < json.size(); ++i) {
            AddJson(json[i], place + "/" + std::to_string(i), word, collector);
        }
    } else if (json.is_string()) {
        const std::string utf8 = json.get<std::string>();
        collector.Add(machine::Widen(utf8), place, word);
        collector.AddBytes(HexBytes(utf8), place, true);
    } else if (json.is_number()) {
        collector.Add(machine::Widen(json.dump()), place, true);
    }
}

}  // namespace

std::vector<SearchedText> SearchedTexts(const Observations& observations) {
    Collector collector;
    for (std::size_t i = 0; i < observations.all().size(); ++i) {
        const Observation& observation = observations.all()[i];
        const CallRow* row = FindCall(observation.question.call);
        const std::string place = "answer " + std::to_string(i + 1) + " (" + observation.question.call + ")";
        const bool fixed_object = row != nullptr && row->object == Content::kWord;
        collector.Add(observation.question.object, place + ", object", fixed_object);
        collector.AddBytes(observation.answer.bytes, place + ", bytes", false);
        for (const Part& part : observation.answer.parts) {
            AddPart(row, observation.question, part, place, collector);
        }
    }
    return collector.Take();
}

std::vector<SearchedText> SearchedTexts(const nlohmann::ordered_json& description) {
    Collector collector;
    AddJson(description, "", false, collector);
    return collector.Take();
}

}  // namespace recorder
