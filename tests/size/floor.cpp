// The least that a library like ours can weigh: no function of its own, but what its interface needs of Boost's signal
// and of jsoncpp, and the words of all messages. scripts/size compiles it for comparison.

#include <nsa/zel/export.h>
#include <tqbase2/system/JsonUtility.h>
#include <tqbase2/system/signals/signal.h>

#include <json/value.h>

#include <string>

namespace lgb {

class TQZEL_EXPORT Floor {
public:
    tqbase2::system::signals::signal<void> changed;

    Floor();
    virtual ~Floor();
    virtual void add(const std::string& text);
    virtual std::string fetch(const Json::Value& record);
};

TQZEL_EXPORT extern const char* const words[];
const char* const words[] = {
#include "words.inc"
};

Floor::Floor() = default;

Floor::~Floor() = default;

void Floor::add(const std::string& text) {
    Json::Value record(Json::objectValue);
    record["text"] = text;
    record["signed"] = Json::Int64{-1};
    record["unsigned"] = Json::UInt64{1};
    record["bool"] = true;
    tqbase2::system::JsonUtility::toJsonString(record);
    changed();
}

std::string Floor::fetch(const Json::Value& record) {
    const bool all = record["bool"].asBool() && record["signed"].asInt64() < 0 && record["unsigned"].asUInt64() > 0;
    return all ? record["text"].asString() : words[0];
}

}  // namespace lgb
