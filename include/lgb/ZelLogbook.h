#pragma once

#include <lgb/DatabaseFactory.h>
#include <lgb/IDatabase.h>
#include <lgb/ILogbook.h>
#include <lgb/IZelLogbook.h>
#include <lgb/LogbookFactory.h>
#include <nsa/zel/export.h>

#include <memory>

/// The logbooks: what device software calls, and with the declarations in `platform/` what it may supply.
namespace lgb {

/// Start here: the one object that device software makes. Opens the databases "lgbCustomer" and "lgbService" and keeps
/// a logbook over each.
class TQZEL_EXPORT ZelLogbook : public IZelLogbook {
public:
    /// Opens the platform's own databases.
    /// @throws whatever the platform throws when one can't be opened; the other is then closed again
    ZelLogbook();

    /// Opens databases of the caller's choice.
    /// @param databaseFactory, logbookFactory used during construction only
    /// @throws whatever they throw; what was opened is then closed again
    ZelLogbook(const DatabaseFactory& databaseFactory, const LogbookFactory& logbookFactory);

    ~ZelLogbook() override;

    ILogbook& customer() override;
    ILogbook& service() override;

private:
    // Logbooks refer to databases, so they are declared behind them and destroyed before them.
    std::unique_ptr<IDatabase> customerDatabase;
    std::unique_ptr<IDatabase> serviceDatabase;
    std::unique_ptr<ILogbook> customerLogbook;
    std::unique_ptr<ILogbook> serviceLogbook;
};

}  // namespace lgb
