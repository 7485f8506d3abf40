// Any bytes as the document of a stored entry: a page costs that entry at most, and the log says so.

#include "countingLogger.h"
#include "require.h"

#include <lgb/IDatabase.h>
#include <lgb/Logbook.h>
#include <nsa/zel/logging.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace logging = tqbase2::nsa::zel::logging;

/// Holds one record.
class OneRecord : public lgb::IDatabase {
public:
    explicit OneRecord(std::string json) : record{{1700000000, 123456789, "a quarter past ten"}, std::move(json)} {}

    std::vector<lgb::DatabaseRecord> fetch(unsigned int, unsigned int) override { return {record}; }

    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override {
        record = {timestamp, json};
    }

    void clear() override {}

    unsigned int count() override { return 1; }

    lgb::DatabaseRecord record;
};

bool sameButForWords(const tqbase2::nsa::zel::logbook::Entry& one, const tqbase2::nsa::zel::logbook::Entry& other) {
    return one.timestamp.text == other.timestamp.text && one.type == other.type && one.code == other.code &&
           one.details.unit == other.details.unit && one.details.device == other.details.device &&
           one.details.params == other.details.params && one.details.generation == other.details.generation;
}

void show(const std::string& document, bool service) {
    OneRecord database(document);
    lgb::Logbook logbook(database, service);
    const unsigned long linesBefore = support::loggedLines(logging::warning);
    const auto page = logbook.fetch(0, 1);
    if (page.empty()) {
        fuzz::require(support::loggedLines(logging::warning) > linesBefore, "what is left out is logged");
        return;
    }
    fuzz::require(page.size() == 1, "one record makes one entry at most");

    logbook.add(page.front());
    const auto again = logbook.fetchAll();
    fuzz::require(again.size() == 1 && sameButForWords(again.front(), page.front()),
                  "what was shown can be stored and shown again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string document(data, data + size);
    show(document, false);
    show(document, true);
    return 0;
}
