#include "Message.h"
#include "ParameterRecord.h"
#include "keys.h"
#include "logFailure.h"
#include "texts.h"

#include <businesslogic/zel/createStr.h>
#include <lgb/DescriptionCreator.h>
#include <lgb/Entry.h>
#include <lgb/UnitDeviceDescriptionCreator.h>
#include <nsa/zel/converter/zel/enums/TypeProductConverter.h>
#include <nsa/zel/logging.h>
#include <tqbase2/system/Exception.h>

#include <cstdint>
#include <utility>

namespace lgb {

namespace enums = tqbase2::nsa::zel::enums;
namespace logging = tqbase2::nsa::zel::logging;
namespace platformlog = tqbase2::system::log::detail;
using businesslogic::zel::createStr;
using tqbase2::nsa::zel::structs::LogbookEntry;
using tqbase2::system::Exception;

namespace {

/// Shows an entry on its way; rendering it costs more than describing it, so only when somebody listens.
void trace(const char* operation, const LogbookEntry& entry) {
    if (platformlog::isEnabled(logging::trace, logging::channel)) {
        platformlog::log(logging::trace, logging::channel,
                         createStr("src/DescriptionCreator.cpp:", operation, ' ', entry));
    }
}

std::string text(const code::Code& code, const ParameterRecord& params) {
    switch (code.type()) {
        case enums::LogbookEntryType::Info:
            return infoText(code, params);
        case enums::LogbookEntryType::Warning:
            return warningText(code, params);
        case enums::LogbookEntryType::Error:
            return errorText(code, params);
    }
    return unknownEntry;
}

}  // namespace

DescriptionCreator::~DescriptionCreator() = default;

bool DescriptionCreator::create(LogbookEntry& entry) {
    return describe(entry, ParameterRecord(entry.details.params));
}

bool DescriptionCreator::describe(LogbookEntry& entry, const ParameterRecord& params) {
    trace("create", entry);
    entry.description = UnitDeviceDescriptionCreator::create(entry);
    return entry.details.generation == enums::Generation::Kestrel ? createKestrel(entry, params)
                                                                  : createZel(entry, params);
}

bool DescriptionCreator::createZel(LogbookEntry& entry, const ParameterRecord& params) {
    if (isServiceOnly(entry)) {
        if (platformlog::isEnabled(logging::error, logging::channel)) {
            platformlog::log(logging::error, logging::channel, createStr("createZel entry is service only: ", entry));
        }
        return false;
    }
    try {
        const code::Code code(static_cast<std::uint32_t>(entry.code), entry.type);
        std::string message = text(code, params);
        entry.description = entry.description.empty() ? std::move(message) : entry.description + message;
    } catch (const Exception& exception) {
        logFailure("createZel", exception);
        return false;
    }
    entry.description += descriptionEnd(entry.type);
    trace("createZel", entry);
    return true;
}

bool DescriptionCreator::createKestrel(LogbookEntry& entry, const ParameterRecord& params) {
    try {
        const auto product = enums::TypeProductConverter::fromJsonToVal(params[keys::typeProduct]);
        const std::string message = params[keys::text].asString();
        entry.description += createStr(product, ' ', message);
    } catch (const Exception& exception) {
        logFailure("createKestrel", exception);
        return false;
    }
    trace("createKestrel", entry);
    return true;
}

std::string DescriptionCreator::createText(const code::Code& code, const std::string& params) const {
    return text(code, ParameterRecord(params));
}

std::string descriptionEnd(enums::LogbookEntryType type) {
    return type == enums::LogbookEntryType::Info ? "." : "!";
}

}  // namespace lgb
