// Device software in small: it starts, records what happens, is told of changes, shows the logbook page by page on a
// display of three lines, and lets a service technician note what was done.

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/ZelLogbook.h>
#include <lgb/entryLog.h>
#include <lgb/params.h>

#include <iostream>
#include <string>

namespace {

using lgb::code::Code;
using lgb::code::ServiceCode;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::enums::OperatingClass;

/// Where in the device an event comes from.
struct Source {
    std::int64_t unit = -1;
    std::int64_t device = -1;
};

/// Records one event in both logbooks and mirrors it into the diagnostic log.
void record(lgb::IZelLogbook& logbooks, const Code& code, const std::string& params, Source source = {}) {
    lgb::Entry event(code, params);
    event.details.unit = source.unit;
    event.details.device = source.device;
    lgb::entryLog(event);
    const auto entry = lgb::LogbookEntryCreator::create(event);
    logbooks.customer().add(entry);
    logbooks.service().add(entry);
}

/// A display of three lines, newest entry on top.
class Display {
public:
    explicit Display(lgb::ILogbook& shown) : logbook(shown) {}

    void show(unsigned int page) const {
        constexpr unsigned int lines = 3;
        std::cout << "+-- page " << page + 1 << '\n';
        for (const auto& entry : logbook.fetch(page * lines, lines)) {
            std::cout << "| " << entry.timestamp.text << ' ' << entry.description << '\n';
        }
    }

private:
    lgb::ILogbook& logbook;
};

}  // namespace

int main() {
    lgb::ZelLogbook logbooks;

    int changes = 0;
    logbooks.customer().changed.connect([&changes] { ++changes; });

    // Start.
    record(logbooks, Code(20, LogbookEntryType::Info), "");
    record(logbooks, Code(201, LogbookEntryType::Info),
           lgb::params::createPathAndOperatingClass("A", OperatingClass::AB));

    // An evening.
    record(logbooks, Code(229, LogbookEntryType::Info), "");
    record(logbooks, Code(6, LogbookEntryType::Warning),
           lgb::params::createBusModuleAndService(1, 3, "(3.1 A, expected 4.8 A)"), {1, 2});
    record(logbooks, Code(14, LogbookEntryType::Error), lgb::params::createBusModule(1, 3));
    record(logbooks, Code(230, LogbookEntryType::Info), "");

    // A service action: no code, no message, and nothing that the customer sees.
    logbooks.service().add(lgb::LogbookEntryCreator::createServiceOnly("Driver of amplifier 3 replaced",
                                                                       ServiceCode(LogbookEntryType::Info)));

    const Display customer(logbooks.customer());
    std::cout << "The customer pages through:\n";
    customer.show(0);
    customer.show(1);

    const Display service(logbooks.service());
    std::cout << "Service pages through:\n";
    service.show(0);
    service.show(1);
    service.show(2);

    logbooks.customer().clear();
    std::cout << "The customer clears the logbook:\n";
    customer.show(0);
    std::cout << "The customer logbook has changed " << changes << " times.\n";
}
