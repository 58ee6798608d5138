#pragma once

#include "tools/orvane/log_sink.h"
#include "tools/orvane/verdicts.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

// Both parse the verdicts from a dump, one message at a time. They rely on the order of the lines, because
// names in the lines may contain any text.

class DiskDumpParser {
public:
    void Take(const LogMessage& message);

    // None unless the dump contains as many verdicts as it announced disks.
    std::optional<std::vector<DiskVerdict>> Result() const;

private:
    enum class Stage { kCount, kDisk, kId, kVerdict, kDetails };

    void TakeLine(std::string_view line);
    void TakeDetail(std::string_view line);

    Stage stage_ = Stage::kCount;
    std::uint32_t announced_ = 0;
    std::uint32_t judged_ = 0;
    std::vector<DiskVerdict> disks_;
};

class VolumeDumpParser {
public:
    void Take(const LogMessage& message);

    // None unless the dump contains as many verdicts as it announced volumes.
    std::optional<std::vector<VolumeVerdict>> Result() const;

private:
    enum class Stage { kCount, kVolume, kIdentity, kReasons, kMountPoints };

    void TakeLine(std::string_view line);
    void TakeIdentity(std::string_view line);

    Stage stage_ = Stage::kCount;
    std::uint32_t announced_ = 0;
    std::uint32_t judged_ = 0;
    std::vector<VolumeVerdict> volumes_;
};

}  // namespace host
