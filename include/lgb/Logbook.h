#pragma once

#include <lgb/DescriptionCreator.h>
#include <lgb/IDatabase.h>
#include <lgb/ILogbook.h>
#include <nsa/zel/export.h>

#include <memory>
#include <vector>

namespace lgb {

/// A logbook over a platform database.
class TQZEL_EXPORT Logbook : public ILogbook {
public:
    /// @param storage must outlive the logbook
    /// @param service whether to describe entries as the service logbook does, service-only ones and details included
    Logbook(IDatabase& storage, bool service);
    ~Logbook() override;

    void add(const tqbase2::nsa::zel::logbook::Entry& entry) override;
    void clear() override;
    std::vector<tqbase2::nsa::zel::logbook::Entry> fetch(unsigned int offset, unsigned int count) override;
    std::vector<tqbase2::nsa::zel::logbook::Entry> fetchAll() override;

private:
    IDatabase& database;
    std::unique_ptr<DescriptionCreator> descriptionCreator;
};

}  // namespace lgb
