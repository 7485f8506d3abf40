#pragma once

#include <lgb/ILogbook.h>
#include <nsa/zel/export.h>

namespace lgb {

/// The two logbooks of a device. Both references stay valid as long as this object; safe from any thread.
class TQZEL_EXPORT IZelLogbook {
public:
    virtual ~IZelLogbook();

    /// What the customer sees: coded entries.
    virtual ILogbook& customer() = 0;

    /// What service sees: service-only entries and service details as well.
    virtual ILogbook& service() = 0;
};

}  // namespace lgb
