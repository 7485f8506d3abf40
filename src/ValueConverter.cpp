#include "ParameterRecord.h"

#include <nsa/zel/logbook/params/ValueConverter.h>

namespace tqbase2::nsa::zel::logbook::params {

std::string ValueConverter::fromJsonToVal(const std::string& params) {
    return lgb::ParameterRecord(params).shown(lgb::Place::Value);
}

}  // namespace tqbase2::nsa::zel::logbook::params
