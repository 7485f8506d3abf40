#pragma once

#include <nsa/zel/converter/zel/enums/LogbookEntryTypeConverter.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryDetailsConverter.h>
#include <nsa/zel/converter/zel/structs/members.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <json/value.h>

namespace tqbase2::nsa::zel::structs {

/// The stored document of one entry. Entries outlive the software that wrote them: its keys, their nesting and the
/// enum spellings are a persistent format. The timestamp is not part of it.
class LogbookEntryConverter {
public:
    /// @throws system::LogicError for a type or generation outside its enumeration
    static Json::Value fromValToJsonValue(const LogbookEntry& entry) {
        Json::Value json(Json::objectValue);
        setMember(json, "type", enums::LogbookEntryTypeConverter::fromValToJsonValue(entry.type));
        setMember(json, "code", Json::UInt64{entry.code});
        setMember(json, "description", entry.description);
        setMember(json, "details", LogbookEntryDetailsConverter::fromValToJsonValue(entry.details));
        return json;
    }

    /// Missing members read as 0, empty, Info and Unknown; members it does not know are ignored.
    /// @throws system::LogicError for an unknown type or generation; Json::LogicError for a member of another JSON type
    static LogbookEntry fromJsonToVal(const Json::Value& json) {
        const auto [code, description, details, type] = members<4>(json, {"code", "description", "details", "type"});
        LogbookEntry entry;
        entry.type = enums::LogbookEntryTypeConverter::fromJsonToVal(*type);
        entry.code = code->asUInt64();
        entry.description = description->asString();
        entry.details = LogbookEntryDetailsConverter::fromJsonToVal(*details);
        return entry;
    }
};

}  // namespace tqbase2::nsa::zel::structs
