#include "LogFindings.h"

#include "schema.h"

#include <fcntl.h>

#include <algorithm>

namespace standalone {

namespace {

bool mayHoldMore(const LogContent& log) {
    return std::any_of(log.frames.begin(), log.frames.end(),
                       [](const LogFrame& frame) { return frame.part != LogFrame::Part::Older; });
}

/// Whether a single record does not follow what the logbook shows: what stood between them was stored before.
bool isBehindAGap(const std::vector<std::int64_t>& torn, std::int64_t newest) {
    const auto newer = std::upper_bound(torn.begin(), torn.end(), newest);
    return torn.end() - newer == 1 && *newer > newest + 1;
}

}  // namespace

std::optional<std::string> LogFindings::damageOf(const Examination& logbook) const {
    if (newest > logbook.newest || isBehindAGap(torn, logbook.newest) || cleared > logbook.head.cleared) {
        return "damaged: its log is damaged, and tells of more behind that";
    }
    if (newestKnown(logbook.head.id) > logbook.newest) {
        return "damaged: it is older than when it was closed";
    }
    return std::nullopt;
}

std::int64_t LogFindings::newestKnown(const LogbookId& logbook) const {
    return std::max({newest, cleared, mark && mark->id == logbook ? mark->newest : 0});
}

bool isEmptied(const std::string& log) {
    return !mayHoldMore(readLog(OpenFile(log, O_RDONLY), schema::pageBytes));
}

LogFindings lookThroughLog(const std::string& database, const std::string& log) {
    if (!stateOf(log)) {
        return {};
    }
    LogFindings findings;
    const LogContent content = readLog(OpenFile(log, O_RDONLY), schema::pageBytes);
    findings.mark = content.mark;
    if (mayHoldMore(content)) {
        const RecordScan scan(database, log, Extent::Log);
        findings.isForeign = scan.isLogForeign();
        findings.isTorn = std::any_of(content.frames.begin(), content.frames.end(), [](const LogFrame& frame) {
            return frame.part == LogFrame::Part::Open || frame.part == LogFrame::Part::Behind;
        });
        findings.newest = std::max(scan.newestIn(LogFrame::Part::Committed), scan.newestIn(LogFrame::Part::Behind));
        findings.cleared = scan.head() ? scan.head()->cleared : 0;
        // A frame that lost its head looks older than it is.
        const bool isOpen = scan.newestIn(LogFrame::Part::Open) > scan.newestIn(LogFrame::Part::Older);
        findings.torn = scan.numbersIn(LogFrame::Part::Open);
        findings.cutOff = scan.recordsBesideNewest(isOpen ? LogFrame::Part::Open : LogFrame::Part::Older);
    }
    return findings;
}

}  // namespace standalone
