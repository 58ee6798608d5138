#include "machine/description/description.h"

#include "machine/description/json_cursor.h"
#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

namespace machine {
namespace {

// Detects duplicate keys. nlohmann's parser silently keeps the last one, but in a hand-written file a
// duplicate is a mistake.
class DuplicateKeys {
public:
    bool operator()(int /*depth*/, nlohmann::json::parse_event_t event, nlohmann::json& parsed) {
        if (event == nlohmann::json::parse_event_t::object_start) {
            keys_.emplace_back();
        } else if (event == nlohmann::json::parse_event_t::object_end) {
            keys_.pop_back();
        } else if (event == nlohmann::json::parse_event_t::key) {
            const auto key = parsed.get<std::string>();
            if (!keys_.back().insert(key).second && first_.empty()) {
                first_ = key;
            }
        }
        return true;
    }

    const std::string& first() const noexcept { return first_; }

private:
    std::vector<std::set<std::string>> keys_;
    std::string first_;
};

nlohmann::json ParsedJson(const std::string& text, const std::string& file) {
    DuplicateKeys duplicates;
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(text, std::ref(duplicates));
    } catch (const nlohmann::json::exception& error) {
        throw DescriptionError(file, "", error.what());
    }
    if (!duplicates.first().empty()) {
        throw DescriptionError(file, "", "the key \"" + duplicates.first() + "\" stands twice in one object");
    }
    return document;
}

}  // namespace

std::optional<std::uint32_t> CallErrors::Find(const std::string& call) const {
    auto found = codes.find(call);
    if (found == codes.end()) {
        const std::size_t colon = call.find(':');
        const bool kind = colon != std::string::npos && call.compare(colon, 2, "::") != 0;
        found = kind ? codes.find(call.substr(0, colon)) : codes.end();
    }
    return found == codes.end() ? std::nullopt : std::optional(found->second);
}

DescriptionError::DescriptionError(std::string file, std::string path, std::string reason)
    : std::runtime_error(file + ": " + (path.empty() ? "/" : path) + ": " + reason),
      file_(std::move(file)),
      path_(std::move(path)),
      reason_(std::move(reason)) {}

Description LoadDescription(const std::filesystem::path& machine) {
    std::error_code ignored;
    const std::filesystem::path file =
        std::filesystem::is_directory(machine, ignored) ? machine / kFileInFolder : machine;
    const std::string name = Narrow(file.wstring());
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw DescriptionError(name, "", "cannot be opened");
    }
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) {
        throw DescriptionError(name, "", "cannot be read");
    }
    return ParseDescription(text, name, file.parent_path());
}

Description ParseDescription(const std::string& json, const std::string& name,
                             const std::filesystem::path& directory) {
    const nlohmann::json document = ParsedJson(json, name);
    const JsonCursor root(document, name);
    Description description;
    rows::Place place;
    place.machine = &description;
    place.directory = &directory;
    rows::ReadRows(rows::MachineTable(), root.Object(), description, place);
    return description;
}

std::string WriteDescription(const Description& description, const std::filesystem::path& directory) {
    rows::Place place;
    place.machine = &description;
    place.directory = &directory;
    return rows::WriteRows(rows::MachineTable(), description, place).dump(2) + "\n";
}

}  // namespace machine
