#include "cases.h"

#include "BareLogbook.h"
#include "MemoryDatabase.h"
#include "TemporaryFolder.h"
#include "samples.h"

#include <lgb/DescriptionCreator.h>
#include <lgb/ErrorTextCreator.h>
#include <lgb/InfoTextCreator.h>
#include <lgb/LogbookFactory.h>
#include <lgb/ServiceDescriptionCreator.h>
#include <lgb/WarningTextCreator.h>
#include <lgb/ZelLogbook.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

using lgb::code::Code;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::enums::OperatingClass;
using tqbase2::nsa::zel::logbook::Entry;
using tqbase2::system::JsonUtility;
using Pieces = std::vector<std::string_view>;

constexpr bool customer = false;
constexpr bool service = true;
constexpr unsigned int customerCapacity = 500;
constexpr unsigned int serviceCapacity = 1000;
constexpr unsigned int adds = 100;

/// For the compiler: somebody looks at the value.
template <typename Value>
void keep(const Value& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

const char* nameOf(bool isService) {
    return isService ? "service" : "customer";
}

void require(bool holds, const std::string& what) {
    if (!holds) {
        throw std::logic_error("a floor that does something else than the product: " + what);
    }
}

template <typename Creator>
Case text(const std::string& name, const Code& code, const std::string& params, const Pieces& pieces) {
    const Sample sample{{code, params}, pieces};
    require(Creator().create(code, params) == textOf(sample, customer), name);
    return {name, 1, [code, params] { return Work{[code, params] { keep(Creator().create(code, params)); }}; },
            [sample] {
                return Work{[sample] {
                    if (!sample.entry.details.params.empty()) {
                        keep(JsonUtility::toJsonValue(sample.entry.details.params));
                    }
                    keep(textOf(sample, customer));
                }};
            }};
}

/// What each entry of a page needs: two parses and its words.
void describe(std::string_view json, const Sample& sample, bool isService) {
    keep(JsonUtility::toJsonValue(json));
    keep(JsonUtility::toJsonValue(sample.entry.details.params));
    keep(textOf(sample, isService));
}

template <typename Creator>
Case description(bool isService) {
    const Sample& sample = samples().front();
    return {std::string("description, ") + nameOf(isService), 1,
            [&sample, isService] {
                const auto entry = std::make_shared<lgb::Entry>(sample.entry);
                Creator().create(*entry);
                require(entry->description == textOf(sample, isService), "description");
                return Work{[entry] { Creator().create(*entry); }};
            },
            [&sample, isService] {
                return Work{[&sample, isService] {
                    keep(JsonUtility::toJsonValue(sample.entry.details.params));
                    keep(textOf(sample, isService));
                }};
            }};
}

Entry sampleEntry() {
    Entry entry;
    static_cast<tqbase2::nsa::zel::structs::LogbookEntry&>(entry) = samples().front().entry;
    entry.timestamp = sampleTime();
    return entry;
}

/// A file of so many records that lasts as long as this object.
struct File {
    explicit File(std::int64_t records) {
        standalone::SqliteDatabaseFactory(folder.path()).create(name, 0, 0);
        BareLogbook(path()).fill(records);
    }

    std::string path() const { return standalone::logbookFile(folder.path(), name).string(); }

    static constexpr const char* name = "measured";
    support::TemporaryFolder folder;
};

/// A logbook over a database that holds so many records.
struct Product {
    Product(std::unique_ptr<lgb::IDatabase> filled, bool isService)
        : database(std::move(filled)), logbook(lgb::LogbookFactory().create(*database, isService)) {}

    std::unique_ptr<lgb::IDatabase> database;
    std::unique_ptr<lgb::ILogbook> logbook;
};

struct InMemory {
    static constexpr const char* name = "in memory";

    /// The product over a database in memory.
    struct Logbook : Product {
        Logbook(unsigned int records, unsigned int, bool isService)
            : Product(std::make_unique<MemoryDatabase>(), isService) {
            fill(records);
        }

        void fill(unsigned int records) { InMemory::fill(*database, records); }
    };

    struct Floor {
        Floor(unsigned int records, unsigned int) { fill(records); }

        void fill(unsigned int records) { InMemory::fill(database, records); }

        template <typename Row>
        void fetch(unsigned int offset, unsigned int count, Row row) {
            for (const lgb::DatabaseRecord& record : database.fetch(offset, count)) {
                row(record.json);
            }
        }

        void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) { database.add(json, timestamp); }

        void clear() { database.clear(); }

        unsigned int count() { return database.count(); }

        MemoryDatabase database;
    };

    static void fill(lgb::IDatabase& database, unsigned int records) {
        for (std::uint64_t number = 1; number <= records; ++number) {
            database.add(sampleOf(number).json, sampleTime());
        }
    }
};

struct InSqlite {
    static constexpr const char* name = "SQLite";

    struct Logbook : File, Product {
        Logbook(unsigned int records, unsigned int capacity, bool isService)
            : File(records),
              Product(standalone::SqliteDatabaseFactory(folder.path()).create(File::name, 0, capacity), isService) {}

        void fill(unsigned int records) { BareLogbook(path()).fill(records); }
    };

    struct Floor : File, BareLogbook {
        Floor(unsigned int records, unsigned int kept) : File(records), BareLogbook(path(), kept) {}
    };
};

/// A page of a logbook of so many records.
template <typename Storage>
Case page(const std::string& name, bool isService, unsigned int records, unsigned int offset, unsigned int count) {
    return {name, count,
            [=] {
                const auto storage = std::make_shared<typename Storage::Logbook>(records, 0, isService);
                const std::vector<Entry> entries = storage->logbook->fetch(offset, count);
                require(entries.size() == count, name);
                for (unsigned int i = 0; i < count; ++i) {
                    require(entries[i].description == textOf(sampleOf(records - offset - i), isService), name);
                }
                return Work{[=] { keep(storage->logbook->fetch(offset, count)); }};
            },
            [=] {
                const auto floor = std::make_shared<typename Storage::Floor>(records, 0);
                return Work{[=] {
                    unsigned int number = records - offset;
                    floor->fetch(offset, count,
                                 [&](std::string_view json) { describe(json, sampleOf(number--), isService); });
                }};
            }};
}

template <typename Storage>
Case fetchAll(const std::string& name, unsigned int records) {
    return {name, records,
            [=] {
                const auto storage = std::make_shared<typename Storage::Logbook>(records, 0, service);
                return Work{[=] { keep(storage->logbook->fetchAll()); }};
            },
            [=] {
                const auto floor = std::make_shared<typename Storage::Floor>(records, 0);
                return Work{[=] {
                    auto number = static_cast<unsigned int>(floor->count());
                    floor->fetch(0, number,
                                 [&](std::string_view json) { describe(json, sampleOf(number--), service); });
                }};
            }};
}

/// Adding to a full logbook, so that the oldest entry goes; the mean over several, so with the checkpoints that fall
/// due. The floor stores a document that is ready.
template <typename Storage>
Case add(const std::string& name, unsigned int capacity) {
    return {name, 1,
            [=] {
                const auto storage = std::make_shared<typename Storage::Logbook>(capacity, capacity, service);
                return Work{[storage, entry = sampleEntry()] { storage->logbook->add(entry); }};
            },
            [=] {
                const auto floor = std::make_shared<typename Storage::Floor>(capacity, capacity);
                return Work{[floor, time = sampleTime()] { floor->add(samples().front().json, time); }};
            },
            adds};
}

template <typename Storage>
Case clear() {
    const auto clearing = [](const auto& storage, const auto& cleared) {
        return Work{[cleared] { cleared->clear(); }, [storage] { storage->fill(serviceCapacity); }};
    };
    return {std::string("clear of 1000, ") + Storage::name, serviceCapacity,
            [=] {
                const auto storage = std::make_shared<typename Storage::Logbook>(0, 0, service);
                return clearing(storage, std::shared_ptr<lgb::ILogbook>(storage, storage->logbook.get()));
            },
            [=] {
                const auto floor = std::make_shared<typename Storage::Floor>(0, 0);
                return clearing(floor, floor);
            }};
}

/// The files of both logbooks, full.
struct Files {
    Files() {
        { const lgb::ZelLogbook makesThem(factory, lgb::LogbookFactory()); }
        BareLogbook(customerFile).fill(customerCapacity);
        BareLogbook(serviceFile).fill(serviceCapacity);
    }

    support::TemporaryFolder folder;
    standalone::SqliteDatabaseFactory factory{folder.path()};
    std::string customerFile = standalone::logbookFile(folder.path(), "lgbCustomer").string();
    std::string serviceFile = standalone::logbookFile(folder.path(), "lgbService").string();
};

struct OpenLogbooks : Files {
    void open() { logbooks.emplace(factory, lgb::LogbookFactory()); }

    void close() { logbooks.reset(); }

    std::optional<lgb::ZelLogbook> logbooks;
};

struct OpenFiles : Files {
    void open() {
        first.emplace(customerFile, customerCapacity);
        second.emplace(serviceFile, serviceCapacity);
    }

    void close() {
        first.reset();
        second.reset();
    }

    std::optional<BareLogbook> first;
    std::optional<BareLogbook> second;
};

template <typename Opened>
Work opening() {
    const auto opened = std::make_shared<Opened>();
    return {[opened] { opened->open(); }, [opened] { opened->close(); }};
}

template <typename Storage>
void appendLogbook(std::vector<Case>& all) {
    const std::string where = std::string(", ") + Storage::name;
    all.push_back(page<Storage>("page of 20, customer" + where, customer, customerCapacity, 0, 20));
    all.push_back(page<Storage>("page of 20, service" + where, service, serviceCapacity, 0, 20));
    all.push_back(fetchAll<Storage>("fetchAll of 1000" + where, serviceCapacity));
    all.push_back(add<Storage>("add to 1000" + where, serviceCapacity));
    all.push_back(clear<Storage>());
}

void appendSizes(std::vector<Case>& all) {
    for (const unsigned int offset : {0U, 500U, 50000U}) {
        all.push_back(page<InSqlite>("page at " + std::to_string(offset) + " of 100000", service, 100000, offset, 20));
    }
    for (const unsigned int records : {10U, 100U, 10000U, 100000U}) {
        all.push_back(fetchAll<InSqlite>("fetchAll of " + std::to_string(records) + ", SQLite", records));
    }
    for (const unsigned int capacity : {500U, 10000U, 100000U}) {
        all.push_back(add<InSqlite>("add to " + std::to_string(capacity) + ", SQLite", capacity));
    }
}

std::vector<Case> makeCases() {
    const std::string located = lgb::params::createBusModule(1, 3);
    const std::string pathAndClass = lgb::params::createPathAndOperatingClass("A", OperatingClass::AB);
    std::vector<Case> all{
        text<lgb::ErrorTextCreator>("error, fixed text", Code(17, LogbookEntryType::Error), "",
                                    {"RF can not be activated with invalid system cfg"}),
        text<lgb::WarningTextCreator>("warning, fixed text", Code(19, LogbookEntryType::Warning), "",
                                      {"RF can not be activated with open Interlock"}),
        text<lgb::InfoTextCreator>("info, fixed text", Code(20, LogbookEntryType::Info), "", {"System restarted"}),
        text<lgb::InfoTextCreator>("info, unknown id", Code(999, LogbookEntryType::Info), "", {"unknown entry"}),
        text<lgb::ErrorTextCreator>("error, unknown id", Code(999, LogbookEntryType::Error), located,
                                    {"unknown entry"}),
        text<lgb::ErrorTextCreator>("error, located text", Code(3, LogbookEntryType::Error), located,
                                    {"Temperature below average for amplifier ", "3", " on bus ", "1"}),
        text<lgb::WarningTextCreator>("warning, located text", Code(70, LogbookEntryType::Warning), located,
                                      {"High input level for amplifier ", "3", " on bus ", "1"}),
        text<lgb::ErrorTextCreator>("error, shared table", Code(6, LogbookEntryType::Error), located,
                                    {"Too low current for amplifier ", "3", " on bus ", "1"}),
        text<lgb::WarningTextCreator>("warning, shared table", Code(6, LogbookEntryType::Warning), located,
                                      {"Too low current for amplifier ", "3", " on bus ", "1", " reduced RF Power"}),
        text<lgb::InfoTextCreator>("info, operating class", Code(201, LogbookEntryType::Info), pathAndClass,
                                   {"Operating Class of RF-Path \"", "A", "\" changed to ", "AB"}),
        description<lgb::DescriptionCreator>(customer),
        description<lgb::ServiceDescriptionCreator>(service),
    };
    appendLogbook<InMemory>(all);
    appendLogbook<InSqlite>(all);
    all.push_back(
        {"opening both logbooks", customerCapacity + serviceCapacity, opening<OpenLogbooks>, opening<OpenFiles>});
    appendSizes(all);
    return all;
}

}  // namespace

const std::vector<Case>& cases() {
    static const std::vector<Case> all = makeCases();
    return all;
}

const Case& caseOf(const std::string& name) {
    for (const Case& each : cases()) {
        if (each.name == name) {
            return each;
        }
    }
    throw std::invalid_argument("no case \"" + name + '"');
}

Work workOf(const Case& measured, const std::string& side) {
    if (side == "product") {
        return measured.product();
    }
    if (side == "floor") {
        return measured.floor();
    }
    throw std::invalid_argument("no side \"" + side + '"');
}

}  // namespace bench
