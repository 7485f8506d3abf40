#include <tqbase2/cia/StringConverter.h>

namespace tqbase2::cia {

Json::Value StringConverter::fromValToJsonValue(const std::string& value) {
    return value;
}

std::string StringConverter::fromJsonToVal(const Json::Value& value) {
    return value.asString();
}

}  // namespace tqbase2::cia
