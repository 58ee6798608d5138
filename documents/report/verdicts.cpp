#include "documents/report/verdicts.h"

#include "documents/text/read_error.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <ios>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

namespace documents {

namespace {

using Json = nlohmann::json;

// One value of the text, and where it is: a JSON pointer, "/volumes/2/id".
class Node {
public:
    Node(const Json& value, std::string place) : value_(value), place_(std::move(place)) {}

    Node Member(const std::string& name) const {
        if (!value_.is_object() || !value_.contains(name)) {
            Fail("has no \"" + name + "\"");
        }
        return {value_.at(name), place_ + '/' + name};
    }

    std::string Text() const {
        Require(value_.is_string(), "is no text");
        return value_.get<std::string>();
    }

    std::uint32_t Number() const {
        Require(value_.is_number_unsigned(), "is no number");
        const auto number = value_.get<std::uint64_t>();
        Require(number <= std::numeric_limits<std::uint32_t>::max(), "is too large");
        return static_cast<std::uint32_t>(number);
    }

    bool Truth() const {
        Require(value_.is_boolean(), "is neither true nor false");
        return value_.get<bool>();
    }

    bool Has(const std::string& name) const { return value_.is_object() && value_.contains(name); }

    bool IsNull() const { return value_.is_null(); }

    template <class Reader>
    auto List(Reader read) const {
        Require(value_.is_array(), "is no list");
        std::vector<decltype(read(*this))> list;
        for (const Json& item : value_) {
            list.push_back(read(Node(item, place_ + '/' + std::to_string(list.size()))));
        }
        return list;
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const {
        throw ReadError(place_.empty() ? "the whole" : place_, reason);
    }

    void Require(bool good, const char* reason) const {
        if (!good) {
            Fail(reason);
        }
    }

    const Json& value_;
    std::string place_;
};

std::string TextOf(const Node& node) {
    return node.Text();
}

Verdict VerdictOf(const Node& node) {
    Verdict verdict;
    const Node can_backup = node.Member("canBackup");
    if (!can_backup.IsNull()) {
        verdict.can_backup = can_backup.Truth();
    }
    for (std::string& text : node.Member("reasons").List(TextOf)) {
        verdict.reasons.push_back({"", std::move(text)});
    }
    // One for each reason; older checks have none.
    if (node.Has("codes")) {
        const std::vector<std::string> codes = node.Member("codes").List(TextOf);
        for (std::size_t index = 0; index < std::min(codes.size(), verdict.reasons.size()); ++index) {
            verdict.reasons[index].code = codes[index];
        }
    }
    return verdict;
}

DiskVerdict DiskOf(const Node& node) {
    return {node.Member("index").Number(), VerdictOf(node)};
}

VolumeVerdict VolumeOf(const Node& node) {
    return {node.Member("id").Text(), node.Member("device").Text(), node.Member("mountPoints").List(TextOf),
            VerdictOf(node)};
}

SelectedVerdict SelectedOf(const Node& node) {
    return {node.Member("volume").Text(), VerdictOf(node)};
}

template <class Reader>
auto ListOrNone(const Node& node, Reader read) {
    using List = decltype(node.List(read));
    return node.IsNull() ? std::optional<List>() : std::optional<List>(node.List(read));
}

Json Parsed(std::string_view json) {
    std::istringstream in{std::string(json)};
    try {
        return Json::parse(in);
    } catch (const Json::parse_error& error) {
        throw ReadError("byte " + std::to_string(error.byte), "is no JSON");
    } catch (const Json::out_of_range&) {
        // The parser has also read the character behind the number, if there is one.
        const std::streamoff read = in.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
        throw ReadError("byte " + std::to_string(in.eof() ? read : read - 1),
                        "a number that is too large ends here");
    }
}

void RequireSchema(const Node& root) {
    // Older checks have none.
    if (root.Has("schema") && root.Member("schema").Number() != 1) {
        throw ReadError("/schema", "is " + std::to_string(root.Member("schema").Number()) +
                                       "; this program reads schema 1");
    }
}

}  // namespace

Verdicts ReadVerdicts(std::string_view json) {
    const Json value = Parsed(json);
    const Node root(value, "");
    RequireSchema(root);
    Verdicts verdicts;
    verdicts.disks = ListOrNone(root.Member("disks"), DiskOf);
    verdicts.volumes = ListOrNone(root.Member("volumes"), VolumeOf);
    verdicts.selected = root.Member("selected").List(SelectedOf);
    return verdicts;
}

}  // namespace documents
