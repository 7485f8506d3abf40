#include <businesslogic/zel/createStr.h>
#include <lgb/Logbook.h>
#include <lgb/ServiceDescriptionCreator.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryConverter.h>
#include <nsa/zel/logging.h>
#include <tqbase2/system/JsonUtility.h>

#include <exception>
#include <string>
#include <utility>

namespace lgb {

namespace logging = tqbase2::nsa::zel::logging;
namespace platformlog = tqbase2::system::log::detail;
using businesslogic::zel::createStr;
using tqbase2::nsa::zel::logbook::Entry;
using tqbase2::nsa::zel::structs::LogbookEntry;
using tqbase2::nsa::zel::structs::LogbookEntryConverter;
using tqbase2::system::JsonUtility;

namespace {

std::unique_ptr<DescriptionCreator> createDescriptionCreator(bool service) {
    if (service) {
        return std::make_unique<ServiceDescriptionCreator>();
    }
    return std::make_unique<DescriptionCreator>();
}

void logUnreadable(const DatabaseRecord& record, const std::exception& exception) {
    if (platformlog::isEnabled(logging::warning, logging::channel)) {
        platformlog::log(
            logging::warning, logging::channel,
            createStr("Can not convert stored logbook entry: ", record.json, " - error: ", exception.what()));
    }
}

/// Appends the entry of a record, if it is to be shown.
void append(std::vector<Entry>& page, DatabaseRecord& record, DescriptionCreator& descriptionCreator) {
    try {
        Entry entry;
        static_cast<LogbookEntry&>(entry) = LogbookEntryConverter::fromJsonToVal(JsonUtility::toJsonValue(record.json));
        if (descriptionCreator.create(entry)) {
            entry.timestamp = std::move(record.timestamp);
            page.push_back(std::move(entry));
        }
    } catch (const std::exception& exception) {
        logUnreadable(record, exception);
    }
}

}  // namespace

ILogbook::ILogbook() = default;

ILogbook::~ILogbook() = default;

Logbook::Logbook(IDatabase& storage, bool service)
    : database(storage), descriptionCreator(createDescriptionCreator(service)) {}

Logbook::~Logbook() = default;

void Logbook::add(const Entry& entry) {
    database.add(JsonUtility::toJsonString(LogbookEntryConverter::fromValToJsonValue(entry)), entry.timestamp);
    changed();
}

void Logbook::clear() {
    if (platformlog::isEnabled(logging::information, logging::channel)) {
        platformlog::log(logging::information, logging::channel, "clear ");
    }
    database.clear();
    changed();
}

std::vector<Entry> Logbook::fetch(unsigned int offset, unsigned int count) {
    if (platformlog::isEnabled(logging::information, logging::channel)) {
        platformlog::log(logging::information, logging::channel,
                         createStr("fetch ", std::to_string(offset), ' ', std::to_string(count)));
    }
    std::vector<DatabaseRecord> records = database.fetch(offset, count);
    std::vector<Entry> page;
    for (DatabaseRecord& record : records) {
        append(page, record, *descriptionCreator);
    }
    return page;
}

std::vector<Entry> Logbook::fetchAll() {
    const unsigned int count = database.count();
    return fetch(0, count);
}

}  // namespace lgb
