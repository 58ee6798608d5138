#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// The differences of two documents. docs/diff.md says what each of them means.
namespace documents::diff {

enum class Object { kMachine, kDisk, kPartition, kVolume };

// In the order in which the changes of one object come.
enum class Kind {
    kAdded,
    kRemoved,
    kReplaced,
    kRenumbered,
    kResized,
    kMoved,
    kRetyped,
    kConverted,
    kDynamic,
    kRelabelled,
    kReformatted,
    kRemounted,
    kRole,
    kChanged,
};

// Bytes. The disk is its number in that document; none: the disk that the change is about.
struct Place {
    std::optional<std::uint32_t> disk;
    std::uint64_t start = 0;
    std::uint64_t length = 0;

    bool operator==(const Place&) const = default;
};

// Empty: the document does not say it.
using Value = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, std::string,
                           std::vector<std::string>, std::vector<Place>>;

// How a sentence writes a value.
enum class Unit { kPlain, kBytes, kType, kSignature, kSerial, kQuoted };

struct ValuePair {
    std::string name;   // in JSON: "fileSystem"
    std::string words;  // in a sentence: "file system"; empty: the value says enough
    Unit unit = Unit::kPlain;
    Value before;
    Value after;
    bool silent = false;  // not in the sentence that describes an object
};

// The object that a change is about.
struct Named {
    Object object = Object::kMachine;
    std::string id;       // empty: none
    std::string subject;  // how a sentence names it: "Disk 0"
    // What a guess rests on, "size and number"; empty: it was not recognised by a guess.
    std::string_view guess;
};

struct Change {
    Named named;
    Kind kind = Kind::kChanged;
    std::vector<ValuePair> values;
};

}  // namespace documents::diff
