#pragma once

#include <lgb/DescriptionCreator.h>
#include <nsa/zel/export.h>

namespace lgb {

/// Makes the descriptions of the service logbook.
class TQZEL_EXPORT ServiceDescriptionCreator : public DescriptionCreator {
public:
    ~ServiceDescriptionCreator() override;

    /// As the customer logbook describes it, followed by a blank and the "service" member of the parameters when there
    /// is one; parameters that are no JSON are logged at level 4 and cost that detail. An entry without a code is shown
    /// with the text it was stored with, behind unit and device.
    /// @return false only where the customer logbook can't describe a coded entry
    /// @throws Json::LogicError for a member of another JSON type
    bool create(tqbase2::nsa::zel::structs::LogbookEntry& entry) override;
};

}  // namespace lgb
