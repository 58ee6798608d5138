#include "machine/simulation/other_names.h"

#include "machine/description/text.h"

#include <cstdint>
#include <map>
#include <utility>

namespace machine {
namespace {

// Like the name of a device interface: the path of a device and the class of the interface.
std::wstring LongName(const std::string& seed, const std::wstring& number) {
    const std::wstring device = Widen(GuidText(DerivedGuid(seed + " device")));
    const std::wstring kind = Widen(GuidText(DerivedGuid(seed + " class")));
    return L"SWD#SampleSoftwareBus#Unit_" + number + L"#" + device + L"#" + kind;
}

}  // namespace

std::vector<std::wstring> OtherNames(const ObjectDirectory& directory, std::wstring_view path) {
    std::vector<std::wstring> names;
    if (!EqualNames(directory.path, path)) {
        return names;
    }
    for (std::uint32_t i = 0; i < directory.other_names; ++i) {
        const std::string seed = "other name " + std::to_string(i);
        const std::wstring number = std::to_wstring(i);
        names.push_back(i % 3 == 0 ? LongName(seed, number) : L"Sample" + number);
    }
    return names;
}

void Shuffle(std::vector<DirectoryEntry>& entries) {
    std::multimap<std::uint32_t, DirectoryEntry> ordered;
    for (DirectoryEntry& entry : entries) {
        const std::uint32_t hash = DerivedNumber(Narrow(Folded(entry.name)));
        ordered.emplace(hash, std::move(entry));
    }
    entries.clear();
    for (auto& [hash, entry] : ordered) {
        entries.push_back(std::move(entry));
    }
}

}  // namespace machine
