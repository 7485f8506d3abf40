#include "ParameterRecord.h"

#include <tqbase2/system/JsonUtility.h>

namespace lgb {

const Json::Value& ParameterRecord::operator[](const char* key) const {
    if (!parsed) {
        parsed.emplace(tqbase2::system::JsonUtility::toJsonValue(text));
    }
    return static_cast<const Json::Value&>(*parsed)[key];
}

}  // namespace lgb
