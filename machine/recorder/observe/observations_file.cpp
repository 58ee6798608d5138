#include "machine/recorder/observe/observations_file.h"

#include "machine/description/kinds.h"
#include "machine/description/rows.h"
#include "machine/description/text.h"

#include <fstream>
#include <iterator>

namespace recorder {
namespace {

namespace rows = machine::rows;
using rows::Json;

constexpr std::uint32_t kVersion = 1;

const rows::Kind<Bytes>& HexBytes() {
    static const rows::Kind<Bytes> kind = {
        "hex bytes", [](const machine::JsonCursor& cursor, const rows::Place&) { return cursor.HexBytes(); },
        [](const Bytes& bytes, const rows::Place&) {
            constexpr char kDigits[] = "0123456789abcdef";
            std::string text;
            text.reserve(bytes.size() * 2);
            for (const std::uint8_t byte : bytes) {
                text += kDigits[byte >> 4];
                text += kDigits[byte & 0xF];
            }
            return Json(text);
        }};
    return kind;
}

const rows::Kind<std::uint32_t>& Access() {
    static const rows::Kind<std::uint32_t> kind = {
        "`read`",
        [](const machine::JsonCursor& cursor, const rows::Place&) {
            if (cursor.Utf8() != "read") {
                cursor.Refuse("must be \"read\"");
            }
            return static_cast<std::uint32_t>(GENERIC_READ);
        },
        [](std::uint32_t access, const rows::Place&) { return access == 0 ? Json() : Json("read"); }};
    return kind;
}

const rows::Table<Part>& PartTable() {
    static const rows::Table<Part> table = {
        {"instance", &Part::instance, rows::Number(), ""},
        {"name", &Part::name, rows::Text(), rows::Required{}, ""},
        {"type", &Part::type, rows::Text(), ""},
        {"error", &Part::error, rows::Number(), ""},
        {"value", &Part::value, rows::LongNumber(), ""},
        {"bytes", &Part::bytes, HexBytes(), ""},
    };
    return table;
}

// A member of a member, for the row of a table.
template <class Owner, class Inner, class Member>
auto Within(Inner Owner::*inner, Member Inner::*member) {
    return [ inner, member ](auto& owner) -> auto& {
        return (owner.*inner).*member;
    };
}

template <class Member>
auto Asked(Member Question::*member) {
    return Within(&Observation::question, member);
}

template <class Member>
auto Told(Member Answer::*member) {
    return Within(&Observation::answer, member);
}

// The members of question and answer in one object.
const rows::Table<Observation>& ObservationTable() {
    static const rows::Table<Observation> table = {
        {"call", Asked(&Question::call), rows::Utf8(), rows::Required{}, ""},
        {"object", Asked(&Question::object), rows::Text(), ""},
        {"access", Asked(&Question::access), Access(), ""},
        {"size", Asked(&Question::size), rows::Number(), ""},
        {"blocks", Told(&Answer::blocks), rows::Flag(), ""},
        {"crashed", Told(&Answer::crashed), rows::Flag(), ""},
        {"step", Told(&Answer::step), rows::Utf8(), ""},
        {"error", Told(&Answer::error), rows::Number(), ""},
        {"value", Told(&Answer::value), rows::LongNumber(), ""},
        {"returned", Told(&Answer::returned), rows::LongNumber(), ""},
        {"bytes", Told(&Answer::bytes), HexBytes(), ""},
        {"parts", Told(&Answer::parts), rows::List("list of parts", rows::Object("", PartTable())), ""},
    };
    return table;
}

// The whole file.
struct File {
    std::uint32_t version = 0;
    Circumstances circumstances;
    std::vector<Observation> answers;
};

const rows::Table<File>& FileTable() {
    static const auto version =
        rows::Checked<std::uint32_t>("number", rows::Number(), [](const std::uint32_t& number) {
            return number == kVersion ? nullptr : "is a version that this program does not read";
        });
    static const rows::Table<File> table = {
        {"observations", &File::version, version, rows::Required{}, ""},
        {"administrator", Within(&File::circumstances, &Circumstances::administrator), rows::Flag(), ""},
        {"redacted", Within(&File::circumstances, &Circumstances::redacted), rows::Flag(), ""},
        {"answers", &File::answers, rows::List("list of answers", rows::Object("", ObservationTable())),
         rows::Required{}, ""},
    };
    return table;
}

nlohmann::json Parsed(const std::string& text, const std::string& name) {
    try {
        return nlohmann::json::parse(text);
    } catch (const nlohmann::json::exception& error) {
        throw machine::DescriptionError(name, "", error.what());
    }
}

}  // namespace

std::string ObservationLine(const Observation& observation) {
    return rows::WriteRows(ObservationTable(), observation, rows::Place{}).dump();
}

Observation ParseObservation(const std::string& line) {
    const std::string name = "a line of the asking process";
    const nlohmann::json json = Parsed(line, name);
    Observation observation;
    rows::Place place;
    rows::ReadRows(ObservationTable(), machine::JsonCursor(json, name).Object(), observation, place);
    return observation;
}

std::string ObservationsText(const Observations& observations) {
    const auto flag = [](bool value) { return std::string(value ? "true" : "false"); };
    std::string text = "{\n\"observations\": " + std::to_string(kVersion) +
                       ",\n\"administrator\": " + flag(observations.circumstances.administrator) +
                       ",\n\"redacted\": " + flag(observations.circumstances.redacted) +
                       ",\n\"answers\": [\n";
    for (const Observation& observation : observations.all()) {
        text += ObservationLine(observation) + (&observation == &observations.all().back() ? "\n" : ",\n");
    }
    return text + "]\n}\n";
}

Observations ParseObservations(const std::string& text, const std::string& name) {
    const nlohmann::json json = Parsed(text, name);
    File file;
    rows::Place place;
    rows::ReadRows(FileTable(), machine::JsonCursor(json, name).Object(), file, place);
    Observations observations;
    observations.circumstances = file.circumstances;
    for (Observation& answer : file.answers) {
        observations.Add(std::move(answer));
    }
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
