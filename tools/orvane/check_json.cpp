#include "tools/orvane/check_report.h"
#include "tools/orvane/reason_codes.h"

#include <nlohmann/json.hpp>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

// Appends the members of the verdict to those that identify the disk or volume.
Json WithVerdict(Json object, const Verdict* verdict) {
    object["canBackup"] = verdict == nullptr ? Json(nullptr) : Json(verdict->can_backup);
    object["reasons"] = Json::array();
    object["codes"] = Json::array();
    if (verdict != nullptr) {
        for (const std::string& reason : verdict->reasons) {
            object["reasons"].push_back(reason);
            object["codes"].push_back(CodeOf(reason));
        }
    }
    return object;
}

Json ObjectOf(const DiskVerdict& disk) {
    return WithVerdict({{"index", disk.index}}, &disk.verdict);
}

Json ObjectOf(const VolumeVerdict& volume) {
    return WithVerdict({{"id", volume.id}, {"device", volume.device}, {"mountPoints", volume.mount_points}},
                       &volume.verdict);
}

Json ObjectOf(const SelectedVerdict& selected) {
    return WithVerdict({{"volume", selected.volume}}, selected.verdict ? &*selected.verdict : nullptr);
}

template <class Verdicts>
Json ArrayOf(const Verdicts& verdicts) {
    Json array = Json::array();
    for (const auto& verdict : verdicts) {
        array.push_back(ObjectOf(verdict));
    }
    return array;
}

}  // namespace

std::string JsonOf(const CheckReport& report) {
    const Json object = {
        {"schema", 1},
        {"disks", report.disks ? ArrayOf(*report.disks) : Json(nullptr)},
        {"volumes", report.volumes ? ArrayOf(*report.volumes) : Json(nullptr)},
        {"selected", ArrayOf(report.selected)},
    };
    constexpr int kIndent = 2;
    return object.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace host
