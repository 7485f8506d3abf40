#include <lgb/Logbook.h>
#include <lgb/ZelLogbook.h>

#include <cstdint>

namespace lgb {

namespace {

// The platform's databases know these numbers; the last one is twice as large for the service logbook.
constexpr const char* customerName = "lgbCustomer";
constexpr const char* serviceName = "lgbService";
constexpr std::uint32_t firstNumber = 6381;
constexpr std::uint32_t customerSecondNumber = 500;
constexpr std::uint32_t serviceSecondNumber = 1000;

}  // namespace

IZelLogbook::~IZelLogbook() = default;

LogbookFactory::~LogbookFactory() = default;

std::unique_ptr<ILogbook> LogbookFactory::create(IDatabase& database, bool service) const {
    return std::make_unique<Logbook>(database, service);
}

ZelLogbook::ZelLogbook() : ZelLogbook(DatabaseFactory(), LogbookFactory()) {}

ZelLogbook::ZelLogbook(const DatabaseFactory& databaseFactory, const LogbookFactory& logbookFactory)
    : customerDatabase(databaseFactory.create(customerName, firstNumber, customerSecondNumber)),
      serviceDatabase(databaseFactory.create(serviceName, firstNumber, serviceSecondNumber)),
      customerLogbook(logbookFactory.create(*customerDatabase, false)),
      serviceLogbook(logbookFactory.create(*serviceDatabase, true)) {}

ZelLogbook::~ZelLogbook() = default;

ILogbook& ZelLogbook::customer() {
    return *customerLogbook;
}

ILogbook& ZelLogbook::service() {
    return *serviceLogbook;
}

}  // namespace lgb
