#include "Salvage.h"

#include "LogbookFiles.h"
#include "RecordScan.h"
#include "Remains.h"
#include "failures.h"

namespace standalone {

namespace {

RecordScan scanOf(const std::string& file, const Salvage::Progress& progress) {
    if (!stateOf(file)) {
        throw DatabaseError(Failure::Missing, file + ": there is no such file");
    }
    return RecordScan(file, LogbookFiles(file).log, Extent::Everything, progress);
}

}  // namespace

struct Salvage::Found {
    Found(const std::string& file, const Progress& progress) : scan(scanOf(file, progress)) {
        if (!scan.isLogbook()) {
            throw DatabaseError(Failure::Foreign, file + ": nothing in it is of a logbook");
        }
        remains = remainsOf(scan, 0);
    }

    RecordScan scan;
    Remains remains;
};

Salvage::Salvage(const std::filesystem::path& file, const Progress& progress)
    : found(std::make_unique<const Found>(file.string(), progress)) {}

Salvage::~Salvage() = default;

const std::vector<std::int64_t>& Salvage::numbers() const {
    return found->remains.numbers;
}

const std::vector<std::int64_t>& Salvage::removed() const {
    return found->remains.removed;
}

const std::vector<LostRange>& Salvage::missing() const {
    return found->remains.lost.all();
}

std::optional<lgb::DatabaseRecord> Salvage::record(std::int64_t number) const {
    auto record = found->scan.record(number);
    if (!record) {
        return std::nullopt;
    }
    return lgb::DatabaseRecord{{record->seconds, record->nanoseconds, std::move(record->time)},
                               std::move(record->json)};
}

}  // namespace standalone
