#include "ParameterRecord.h"
#include "keys.h"

#include <nsa/zel/logbook/params/ValueConverter.h>

namespace tqbase2::nsa::zel::logbook::params {

std::string ValueConverter::fromJsonToVal(const std::string& params) {
    return lgb::ParameterRecord(params)[lgb::keys::value].asString();
}

}  // namespace tqbase2::nsa::zel::logbook::params
