#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/ZelLogbook.h>
#include <lgb/params.h>

#include <iostream>

using lgb::code::Code;
using tqbase2::nsa::zel::enums::LogbookEntryType;

int main() {
    lgb::ZelLogbook logbooks;
    lgb::ILogbook& customer = logbooks.customer();
    customer.changed.connect([] { std::cout << "The customer logbook has changed.\n"; });

    const lgb::Entry failure(Code(14, LogbookEntryType::Error), lgb::params::createBusModule(1, 3));
    customer.add(lgb::LogbookEntryCreator::create(failure));

    for (const auto& entry : customer.fetch(0, 20)) {
        std::cout << entry.description << '\n';
    }
}
