#pragma once

#include <lgb/IDatabase.h>
#include <lgb/ILogbook.h>
#include <nsa/zel/export.h>

#include <memory>

namespace lgb {

/// Makes the logbooks of a ZelLogbook; a subclass may make others.
class TQZEL_EXPORT LogbookFactory {
public:
    virtual ~LogbookFactory();

    /// @param database must outlive the logbook
    /// @param service whether it is the service logbook
    virtual std::unique_ptr<ILogbook> create(IDatabase& database, bool service) const;
};

}  // namespace lgb
