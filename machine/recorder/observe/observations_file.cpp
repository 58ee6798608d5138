#include "machine/recorder/observe/observations_file.h"

#include "machine/description/json_cursor.h"
#include "machine/description/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

namespace recorder {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint32_t kVersion = 1;
constexpr const char* kRead = "read";

std::string Hexadecimal(const Bytes& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

// Text that is not valid Unicode is written as its code units, as in a description.
Json TextOf(const std::wstring& text) {
    const std::string utf8 = machine::Narrow(text);
    if (machine::Widen(utf8) == text) {
        return utf8;
    }
    std::string units;
    for (const wchar_t unit : text) {
        std::array<char, 6> digits{};
        std::snprintf(digits.data(), digits.size(), "%04X", static_cast<unsigned>(unit));
        units += (units.empty() ? "" : " ") + std::string(digits.data());
    }
    return {{"utf16", units}};
}

void AddQuestion(Json& json, const Question& question) {
    json["call"] = question.call;
    if (!question.object.empty()) {
        json["object"] = TextOf(question.object);
    }
    if (question.access != 0) {
        json["access"] = kRead;
    }
    if (question.size != 0) {
        json["size"] = question.size;
    }
}

void AddNumber(Json& json, const char* key, std::uint64_t number) {
    if (number != 0) {
        json[key] = number;
    }
}

void AddBytes(Json& json, const Bytes& bytes) {
    if (!bytes.empty()) {
        json["bytes"] = Hexadecimal(bytes);
    }
}

Json PartOf(const Part& part) {
    Json json = Json::object();
    AddNumber(json, "instance", part.instance);
    json["name"] = TextOf(part.name);
    if (!part.type.empty()) {
        json["type"] = TextOf(part.type);
    }
    AddNumber(json, "error", part.error);
    AddNumber(json, "value", part.value);
    AddBytes(json, part.bytes);
    return json;
}

void AddAnswer(Json& json, const Answer& answer) {
    if (answer.blocks) {
        json["blocks"] = true;
    }
    if (answer.crashed) {
        json["crashed"] = true;
    }
    if (!answer.step.empty()) {
        json["step"] = answer.step;
    }
    AddNumber(json, "error", answer.error);
    AddNumber(json, "value", answer.value);
    AddNumber(json, "returned", answer.returned);
    AddBytes(json, answer.bytes);
    if (!answer.parts.empty()) {
        json["parts"] = Json::array();
        for (const Part& part : answer.parts) {
            json["parts"].push_back(PartOf(part));
        }
    }
}

Question TakeQuestion(machine::JsonObject& object) {
    Question question;
    question.call = object.Require("call").Utf8();
    question.object = object.Text("object", L"");
    if (const auto access = object.Find("access")) {
        if (access->Utf8() != kRead) {
            access->Refuse("must be \"read\"");
        }
        question.access = GENERIC_READ;
    }
    question.size = object.Number32("size", 0);
    return question;
}

Bytes TakeBytes(machine::JsonObject& object) {
    const auto bytes = object.Find("bytes");
    return bytes ? bytes->HexBytes() : Bytes();
}

Part TakePart(const machine::JsonCursor& cursor) {
    machine::JsonObject object = cursor.Object();
    Part part;
    part.instance = object.Number32("instance", 0);
    part.name = object.Require("name").Text();
    part.type = object.Text("type", L"");
    part.error = object.Number32("error", 0);
    part.value = object.Number("value", 0);
    part.bytes = TakeBytes(object);
    object.RefuseOthers();
    return part;
}

Answer TakeAnswer(machine::JsonObject& object) {
    Answer answer;
    answer.blocks = object.Bool("blocks", false);
    answer.crashed = object.Bool("crashed", false);
    if (const auto step = object.Find("step")) {
        answer.step = step->Utf8();
    }
    answer.error = object.Number32("error", 0);
    answer.value = object.Number("value", 0);
    answer.returned = object.Number("returned", 0);
    answer.bytes = TakeBytes(object);
    if (const auto parts = object.Find("parts")) {
        for (const machine::JsonCursor& part : parts->Elements()) {
            answer.parts.push_back(TakePart(part));
        }
    }
    return answer;
}

nlohmann::json Parsed(const std::string& text, const std::string& name) {
    try {
        return nlohmann::json::parse(text);
    } catch (const nlohmann::json::exception& error) {
        throw machine::DescriptionError(name, "", error.what());
    }
}

Circumstances TakeCircumstances(machine::JsonObject& root) {
    Circumstances circumstances;
    circumstances.administrator = root.Bool("administrator", true);
    circumstances.redacted = root.Bool("redacted", false);
    return circumstances;
}

// What was read from a line that one process passed to another.
template <class Take>
auto FromLine(const std::string& line, Take take) {
    const std::string name = "the answer of the asking process";
    const nlohmann::json json = Parsed(line, name);
    machine::JsonObject object = machine::JsonCursor(json, name).Object();
    auto taken = take(object);
    object.RefuseOthers();
    return taken;
}

}  // namespace

std::string QuestionLine(const Question& question) {
    Json json = Json::object();
    AddQuestion(json, question);
    return json.dump();
}

std::string AnswerLine(const Answer& answer) {
    Json json = Json::object();
    AddAnswer(json, answer);
    return json.dump();
}

Question ParseQuestion(const std::string& line) {
    return FromLine(line, TakeQuestion);
}

Answer ParseAnswer(const std::string& line) {
    return FromLine(line, TakeAnswer);
}

std::string ObservationsText(const Observations& observations) {
    std::string text = "{\n\"observations\": " + std::to_string(kVersion) + ",\n";
    text += std::string("\"administrator\": ") +
            (observations.circumstances.administrator ? "true" : "false") + ",\n";
    text += std::string("\"redacted\": ") + (observations.circumstances.redacted ? "true" : "false") + ",\n";
    text += "\"answers\": [\n";
    for (const Observation& observation : observations.all()) {
        Json json = Json::object();
        AddQuestion(json, observation.question);
        AddAnswer(json, observation.answer);
        text += json.dump() + (&observation == &observations.all().back() ? "\n" : ",\n");
    }
    return text + "]\n}\n";
}

Observations ParseObservations(const std::string& text, const std::string& name) {
    const nlohmann::json json = Parsed(text, name);
    machine::JsonObject root = machine::JsonCursor(json, name).Object();
    const machine::JsonCursor version = root.Require("observations");
    if (version.Number32() != kVersion) {
        version.Refuse("is a version that this program does not read");
    }
    Observations observations;
    observations.circumstances = TakeCircumstances(root);
    for (const machine::JsonCursor& element : root.Require("answers").Elements()) {
        machine::JsonObject object = element.Object();
        Observation observation{TakeQuestion(object), TakeAnswer(object)};
        object.RefuseOthers();
        observations.Add(std::move(observation));
    }
    root.RefuseOthers();
    return observations;
}

Observations LoadObservations(const std::filesystem::path& file) {
    const std::string name = machine::Narrow(file.wstring());
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw machine::DescriptionError(name, "", "cannot be opened");
    }
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) {
        throw machine::DescriptionError(name, "", "cannot be read");
    }
    return ParseObservations(text, name);
}

}  // namespace recorder
