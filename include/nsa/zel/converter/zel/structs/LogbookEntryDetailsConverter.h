#pragma once

#include <nsa/zel/converter/zel/enums/GenerationConverter.h>
#include <nsa/zel/converter/zel/structs/members.h>
#include <nsa/zel/structs/LogbookEntry.h>
#include <tqbase2/cia/StringConverter.h>

#include <json/value.h>

namespace tqbase2::nsa::zel::structs {

/// The "details" object of a stored document. Its keys are a persistent format.
class LogbookEntryDetailsConverter {
public:
    /// @throws system::LogicError for a generation outside its enumeration
    static Json::Value fromValToJsonValue(const LogbookEntryDetails& details) {
        Json::Value json(Json::objectValue);
        setMember(json, "unit", Json::Int64{details.unit});
        setMember(json, "device", Json::Int64{details.device});
        setMember(json, "params", cia::StringConverter::fromValToJsonValue(details.params));
        setMember(json, "generation", enums::GenerationConverter::fromValToJsonValue(details.generation));
        return json;
    }

    /// Missing members read as 0, empty and Unknown.
    /// @throws system::LogicError for an unknown generation; Json::LogicError for a member of another JSON type
    static LogbookEntryDetails fromJsonToVal(const Json::Value& json) {
        const auto [device, generation, params, unit] = members<4>(json, {"device", "generation", "params", "unit"});
        LogbookEntryDetails details;
        details.unit = unit->asInt64();
        details.device = device->asInt64();
        details.params = cia::StringConverter::fromJsonToVal(*params);
        details.generation = enums::GenerationConverter::fromJsonToVal(*generation);
        return details;
    }
};

}  // namespace tqbase2::nsa::zel::structs
