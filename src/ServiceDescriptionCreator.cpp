#include "ParameterRecord.h"
#include "keys.h"
#include "logFailure.h"

#include <lgb/Entry.h>
#include <lgb/ServiceDescriptionCreator.h>
#include <lgb/UnitDeviceDescriptionCreator.h>
#include <tqbase2/system/Exception.h>

namespace lgb {

namespace {

/// The "service" member of the parameters; empty, and logged, when they are no JSON: that costs the detail, not the
/// entry.
std::string serviceDetail(const ParameterRecord& params) {
    try {
        return params[keys::service].asString();
    } catch (const tqbase2::system::Exception& exception) {
        logFailure("create", exception);
        return "";
    }
}

}  // namespace

ServiceDescriptionCreator::~ServiceDescriptionCreator() = default;

bool ServiceDescriptionCreator::create(tqbase2::nsa::zel::structs::LogbookEntry& entry) {
    if (isServiceOnly(entry)) {
        entry.description.insert(0, UnitDeviceDescriptionCreator::create(entry));
        return true;
    }
    const ParameterRecord params(entry.details.params);
    if (!describe(entry, params)) {
        return false;
    }
    const std::string detail = serviceDetail(params);
    if (!detail.empty()) {
        entry.description.append(" ").append(detail);
    }
    return true;
}

}  // namespace lgb
