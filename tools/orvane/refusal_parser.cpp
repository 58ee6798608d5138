#include "tools/orvane/refusal_parser.h"

namespace host {

namespace {

// The trace lines of the backup check. All errors between them concern the volume, even if its name garbles
// their text.
constexpr std::string_view kEntering = "Entering function orvane::InfoGrabber::CanBackup ";
constexpr std::string_view kLeaving = "Leaving function orvane::InfoGrabber::CanBackup ";

constexpr std::string_view kRefusal =
    "CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information";

// Used if the log could not express any line of the reason.
constexpr const char* kUnspeakable = "The reason has letters that this system's locale lacks.";

}  // namespace

void RefusalParser::Take(const LogMessage& message) {
    if (message.level == ORVANE_LEVEL_TRACE) {
        judging_ = message.text.starts_with(kEntering) || (judging_ && !message.text.starts_with(kLeaving));
    } else if (message.level == ORVANE_LEVEL_ERROR && message.text == kRefusal) {
        refused_ = true;
    } else if (judging_ && message.level == ORVANE_LEVEL_ERROR) {
        lines_.push_back(message.text);
    }
}

std::optional<Verdict> RefusalParser::Result(std::uint32_t status) const {
    if (status == ORVANE_BUFFER_TOO_SMALL) {
        return Verdict{.can_backup = true, .reasons = {}};
    }
    if (!refused_) {
        return std::nullopt;
    }
    Verdict verdict{.can_backup = false, .reasons = lines_};
    // "Volume ... cannot be backed up because:" is a heading, not a reason.
    if (verdict.reasons.size() > 1 && verdict.reasons.front().starts_with("Volume ")) {
        verdict.reasons.erase(verdict.reasons.begin());
    }
    if (verdict.reasons.empty()) {
        verdict.reasons.emplace_back(kUnspeakable);
    }
    return verdict;
}

}  // namespace host
