#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/timestamp.h>

namespace lgb {

using tqbase2::nsa::zel::structs::LogbookEntry;
namespace logbook = tqbase2::nsa::zel::logbook;

logbook::Entry createBaseEntry() {
    logbook::Entry entry;
    entry.timestamp = timestamp::now();
    return entry;
}

logbook::Entry LogbookEntryCreator::create(const LogbookEntry& entry) {
    logbook::Entry made = createBaseEntry();
    static_cast<LogbookEntry&>(made) = entry;
    return made;
}

logbook::Entry LogbookEntryCreator::createServiceOnly(const std::string& text, const code::ServiceCode& code) {
    logbook::Entry made = createBaseEntry();
    static_cast<LogbookEntry&>(made) = Entry(code, text);
    return made;
}

}  // namespace lgb
