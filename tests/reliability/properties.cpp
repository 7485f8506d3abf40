// Whatever goes into a logbook comes out again, and its order, capacity and pages are those of a plain list, whatever
// is done to it. Inputs are made and, when one fails, made small by RapidCheck.

#include "Check.h"
#include "TemporaryFolder.h"

#include <lgb/Entry.h>
#include <lgb/IDatabase.h>
#include <lgb/LogbookFactory.h>
#include <lgb/UnitDeviceDescriptionCreator.h>
#include <lgb/ZelLogbook.h>
#include <lgb/params.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryConverter.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <tqbase2/system/JsonUtility.h>

#include <rapidcheck.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace lgb::timestamp {

bool operator==(const Timestamp& one, const Timestamp& other) {
    return one.seconds == other.seconds && one.nanoseconds == other.nanoseconds && one.text == other.text;
}

}  // namespace lgb::timestamp

namespace lgb {

bool operator==(const DatabaseRecord& one, const DatabaseRecord& other) {
    return one.timestamp == other.timestamp && one.json == other.json;
}

std::ostream& operator<<(std::ostream& stream, const DatabaseRecord& record) {
    return stream << record.timestamp.seconds << ' ' << record.timestamp.nanoseconds << ' ' << record.timestamp.text
                  << ' ' << record.json;
}

}  // namespace lgb

namespace tqbase2::nsa::zel::logbook {

bool operator==(const Entry& one, const Entry& other) {
    return one.timestamp == other.timestamp && one.type == other.type && one.code == other.code &&
           one.description == other.description && one.details.unit == other.details.unit &&
           one.details.device == other.details.device && one.details.params == other.details.params &&
           one.details.generation == other.details.generation;
}

}  // namespace tqbase2::nsa::zel::logbook

namespace {

namespace enums = tqbase2::nsa::zel::enums;
using lgb::DatabaseRecord;
using lgb::timestamp::Timestamp;
using tqbase2::nsa::zel::logbook::Entry;
using tqbase2::nsa::zel::structs::LogbookEntryConverter;
using tqbase2::system::JsonUtility;

/// Small ones, any, and the ends of the range.
template <typename Number>
rc::Gen<Number> anyNumber() {
    return rc::gen::oneOf(rc::gen::inRange<Number>(0, 12), rc::gen::arbitrary<Number>(),
                          rc::gen::element(std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()));
}

/// NUL, and what is no UTF-8, included.
rc::Gen<std::string> anyBytes() {
    return rc::gen::container<std::string>(
        rc::gen::map(rc::gen::inRange(0, 256), [](int byte) { return static_cast<char>(byte); }));
}

rc::Gen<Timestamp> anyTime() {
    return rc::gen::construct<Timestamp>(anyNumber<std::int64_t>(), anyNumber<std::int64_t>(), anyBytes());
}

rc::Gen<DatabaseRecord> anyRecord() {
    return rc::gen::construct<DatabaseRecord>(anyTime(), anyBytes());
}

/// Codes of messages, none, and some that look like none in their low 32 bits.
rc::Gen<std::uint64_t> anyCode() {
    return rc::gen::oneOf(rc::gen::inRange<std::uint64_t>(0, 300), anyNumber<std::uint64_t>(),
                          rc::gen::element<std::uint64_t>(0, std::uint64_t{1} << 32));
}

/// Readable ones, so that coded entries are shown, and any.
rc::Gen<std::string> anyParams() {
    return rc::gen::oneOf(anyBytes(), rc::gen::map(anyBytes(), [](const std::string& detail) {
                              return lgb::params::createBusModuleAndService(1, 3, detail);
                          }));
}

rc::Gen<Entry> anyEntry() {
    return rc::gen::exec([] {
        Entry entry;
        entry.timestamp = *anyTime();
        entry.type = static_cast<enums::LogbookEntryType>(*rc::gen::inRange(0, 3));
        entry.code = *anyCode();
        entry.description = *anyBytes();
        entry.details.unit = *anyNumber<std::int64_t>();
        entry.details.device = *anyNumber<std::int64_t>();
        entry.details.params = *anyParams();
        entry.details.generation = static_cast<enums::Generation>(*rc::gen::inRange(0, 3));
        return entry;
    });
}

/// A folder of its own for the files of one run.
class Storage {
public:
    std::unique_ptr<lgb::IDatabase> open(const char* name, std::uint32_t capacity) const {
        return factory.create(name, 0, capacity);
    }

    lgb::ZelLogbook openLogbooks() const { return {factory, lgb::LogbookFactory()}; }

private:
    support::TemporaryFolder folder;
    standalone::SqliteDatabaseFactory factory{folder.path()};
};

/// The databases' promise, kept in memory: newest first, the oldest dropped beyond the capacity.
class Model {
public:
    explicit Model(std::size_t most) : capacity(most) {}

    void add(const DatabaseRecord& record) {
        records.push_front(record);
        if (records.size() > capacity) {
            records.pop_back();
        }
    }

    void clear() { records.clear(); }

    std::size_t count() const { return records.size(); }

    std::vector<DatabaseRecord> fetch(std::size_t offset, std::size_t count) const {
        std::vector<DatabaseRecord> page;
        for (std::size_t i = offset; i < records.size() && page.size() < count; ++i) {
            page.push_back(records[i]);
        }
        return page;
    }

private:
    std::size_t capacity;
    std::deque<DatabaseRecord> records;
};

enum class Operation : std::uint8_t { Add, Fetch, Clear, Reopen };

struct Step {
    Operation operation;
    DatabaseRecord record;
    unsigned int offset;
    unsigned int count;
};

std::ostream& operator<<(std::ostream& stream, const Step& step) {
    constexpr const char* names[] = {"add", "fetch", "clear", "reopen"};  // index is the operation
    return stream << names[static_cast<std::size_t>(step.operation)] << ' ' << step.offset << ' ' << step.count << " ("
                  << step.record << ')';
}

rc::Gen<Step> anyStep() {
    const auto operation = rc::gen::weightedElement<Operation>(
        {{12, Operation::Add}, {6, Operation::Fetch}, {1, Operation::Clear}, {1, Operation::Reopen}});
    return rc::gen::construct<Step>(operation, anyRecord(), anyNumber<unsigned int>(), anyNumber<unsigned int>());
}

void anyRecordSurvives() {
    const auto record = *anyRecord();
    const Storage storage;
    storage.open("any", 0)->add(record.json, record.timestamp);
    RC_ASSERT(storage.open("any", 0)->fetch(0, 2) == std::vector<DatabaseRecord>{record});
}

/// Of an entry that is shown, all but the words is as it was added; of a free text, the words too.
void requireShown(const std::vector<Entry>& page, Entry added, bool service) {
    const bool freeText = service && lgb::isServiceOnly(added);
    RC_ASSERT(page.size() == 1U || (page.empty() && !freeText));
    if (!page.empty()) {
        added.description =
            freeText ? lgb::UnitDeviceDescriptionCreator::create(added) + added.description : page.front().description;
        RC_ASSERT(page == std::vector<Entry>{added});
    }
}

/// The stored document holds the whole entry, whether its words can be made or not.
void requireStored(const Storage& storage, const char* name, const Entry& added) {
    const auto records = storage.open(name, 0)->fetch(0, 2);
    RC_ASSERT(records.size() == 1U);
    Entry stored;
    static_cast<tqbase2::nsa::zel::structs::LogbookEntry&>(stored) =
        LogbookEntryConverter::fromJsonToVal(JsonUtility::toJsonValue(records.front().json));
    stored.timestamp = records.front().timestamp;
    RC_ASSERT(stored == added);
}

void anyEntrySurvives() {
    const auto entry = *anyEntry();
    const Storage storage;
    {
        lgb::ZelLogbook logbooks = storage.openLogbooks();
        logbooks.customer().add(entry);
        logbooks.service().add(entry);
    }
    requireStored(storage, "lgbCustomer", entry);
    requireStored(storage, "lgbService", entry);
    lgb::ZelLogbook logbooks = storage.openLogbooks();
    requireShown(logbooks.customer().fetch(0, 2), entry, false);
    requireShown(logbooks.service().fetch(0, 2), entry, true);
}

void databaseBehavesLikeItsModel() {
    const auto capacity = *rc::gen::inRange<std::uint32_t>(1, 12);
    const auto steps = *rc::gen::container<std::vector<Step>>(anyStep());
    const Storage storage;
    auto database = storage.open("any", capacity);
    Model model(capacity);
    for (const Step& step : steps) {
        switch (step.operation) {
            case Operation::Add:
                database->add(step.record.json, step.record.timestamp);
                model.add(step.record);
                break;
            case Operation::Fetch:
                RC_ASSERT(database->fetch(step.offset, step.count) == model.fetch(step.offset, step.count));
                break;
            case Operation::Clear:
                database->clear();
                model.clear();
                break;
            case Operation::Reopen:
                database.reset();
                database = storage.open("any", capacity);
                break;
        }
        RC_ASSERT(database->count() == model.count());
    }
    RC_ASSERT(database->fetch(0, capacity + 1) == model.fetch(0, capacity + 1));
}

void requirePagesToJoin(lgb::ILogbook& logbook, unsigned int added, unsigned int pageSize) {
    std::vector<Entry> joined;
    for (unsigned int offset = 0; offset < added; offset += pageSize) {
        const auto page = logbook.fetch(offset, pageSize);
        RC_ASSERT(page.size() <= pageSize);
        joined.insert(joined.end(), page.begin(), page.end());
    }
    RC_ASSERT(joined == logbook.fetchAll());
}

void pagesJoinToTheWhole() {
    const auto entries = *rc::gen::container<std::vector<Entry>>(anyEntry());
    const auto pageSize = *rc::gen::inRange(1U, 30U);
    const Storage storage;
    lgb::ZelLogbook logbooks = storage.openLogbooks();
    for (lgb::ILogbook* const logbook : {&logbooks.customer(), &logbooks.service()}) {
        for (const Entry& entry : entries) {
            logbook->add(entry);
        }
        requirePagesToJoin(*logbook, static_cast<unsigned int>(entries.size()), pageSize);
    }
}

struct Property {
    const char* name;
    void (*holds)();
};

constexpr Property properties[] = {
    {"any record survives", anyRecordSurvives},
    {"any entry survives", anyEntrySurvives},
    {"a database behaves like its model", databaseBehavesLikeItsModel},
    {"pages join to the whole", pagesJoinToTheWhole},
};

/// RapidCheck takes its settings from the environment; what stands there already, such as the input to reproduce,
/// counts.
void configure(const support::Extent& extent) {
    const char* const given = std::getenv("RC_PARAMS");
    const std::string settings =
        "max_success=" + std::to_string(extent.rounds) + " seed=" + std::to_string(extent.seed);
    setenv("RC_PARAMS", (settings + ' ' + (given != nullptr ? given : "")).c_str(), 1);
}

int run(int argc, char** argv) {
    const support::Extent extent = support::extentOf(argc, argv, 100);
    configure(extent);
    support::Failures failures;
    for (const Property& property : properties) {
        failures.expect(rc::check(property.name, property.holds), property.name);
    }
    return failures.conclude(std::to_string(std::size(properties)) + " properties, " + std::to_string(extent.rounds) +
                             " rounds each, seed " + std::to_string(extent.seed));
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
