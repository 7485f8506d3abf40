#pragma once

#include <nsa/zel/converter/zel/enums/GenerationConverter.h>
#include <nsa/zel/structs/LogbookEntry.h>
#include <tqbase2/cia/StringConverter.h>

#include <json/value.h>

namespace tqbase2::nsa::zel::structs {

/// The "details" object of a stored document. Its keys are a persistent format.
class LogbookEntryDetailsConverter {
public:
    /// @throws system::LogicError for a generation outside its enumeration
    static Json::Value fromValToJsonValue(const LogbookEntryDetails& details) {
        Json::Value json;
        json["unit"] = Json::Int64{details.unit};
        json["device"] = Json::Int64{details.device};
        json["params"] = cia::StringConverter::fromValToJsonValue(details.params);
        json["generation"] = enums::GenerationConverter::fromValToJsonValue(details.generation);
        return json;
    }

    /// Missing members read as 0, empty and Unknown.
    /// @throws system::LogicError for an unknown generation; Json::LogicError for a member of another JSON type
    static LogbookEntryDetails fromJsonToVal(const Json::Value& json) {
        LogbookEntryDetails details;
        details.unit = json["unit"].asInt64();
        details.device = json["device"].asInt64();
        details.params = cia::StringConverter::fromJsonToVal(json["params"]);
        details.generation = enums::GenerationConverter::fromJsonToVal(json["generation"]);
        return details;
    }
};

}  // namespace tqbase2::nsa::zel::structs
