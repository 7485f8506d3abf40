#pragma once

#include <businesslogic/zel/createStr.h>
#include <businesslogic/zel/onOffStr.h>
#include <businesslogic/zel/toStringFixed.h>
#include <lgb/Entry.h>
#include <lgb/ErrorTextCreator.h>
#include <lgb/ErrorWarningTexts.h>
#include <lgb/InfoTextCreator.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/ServiceDescriptionCreator.h>
#include <lgb/UnitDeviceDescriptionCreator.h>
#include <lgb/WarningTextCreator.h>
#include <lgb/commontexts.h>
#include <lgb/entryLog.h>
#include <lgb/params.h>
#include <nsa/zel/converter/zel/enums/InterlockModeConverter.h>
#include <nsa/zel/converter/zel/enums/OperatingClassConverter.h>
#include <nsa/zel/converter/zel/enums/OutputModeConverter.h>
#include <nsa/zel/converter/zel/enums/SystemConfigRoleConverter.h>
#include <nsa/zel/converter/zel/enums/TypeProductConverter.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryConverter.h>
#include <nsa/zel/logbook/params/ValueConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <sstream>
#include <string>

/// The library's operations that have no state, each with arguments long enough to need memory.
namespace texts {

using namespace tqbase2::nsa::zel::enums;
using lgb::code::Code;
using lgb::code::ServiceCode;
using tqbase2::nsa::zel::structs::LogbookEntry;
using tqbase2::nsa::zel::structs::LogbookEntryConverter;
using tqbase2::nsa::zel::structs::LogbookEntryDetailsConverter;
using tqbase2::system::JsonUtility;

/// What may be thrown besides running out of memory: whether the operation reads JSON text, whose parser may say that
/// it could not.
enum class Reads { Nothing, Json };

struct Operation {
    const char* name;
    Reads reads;
    /// What it gives, in words; empty for a description that is not to be shown.
    std::string (*run)();
};

inline const std::string word = "a word that is too long to stand in the string itself";
inline const std::string everything =
    R"({"bus":4294967295,"module":4294967294,"nr":4294967293,"group":-9223372036854775807,"on":true,"ok":true,)"
    R"("watt":true,"path":"the RF-Path of all amplifiers","type":"a type of product","value":"a value of some length",)"
    R"("version":"4.11.2-rc1+build.20261121","service":"3.1 A, expected 4.8 A","operatingClass":"step8",)"
    R"("outputMode":"increased9","interlockMode":"interactive","role":"device"})";
inline const std::string firstGeneration =
    R"({"typeProduct":"Kestrel","text":"Temperature of the amplifier too high"})";
inline const Code error(14, LogbookEntryType::Error);
inline const Code warning(202, LogbookEntryType::Warning);
inline const Code info(200, LogbookEntryType::Info);

inline LogbookEntry coded() {
    LogbookEntry entry = lgb::Entry(error, everything);
    entry.details.unit = 2147483647;
    entry.details.device = 2147483646;
    return entry;
}

inline LogbookEntry ofFirstGeneration() {
    LogbookEntry entry = lgb::Entry(error, firstGeneration);
    entry.details.generation = Generation::Kestrel;
    return entry;
}

inline LogbookEntry serviceOnly() {
    return lgb::Entry(ServiceCode(LogbookEntryType::Info), word);
}

template <typename Creator>
std::string described(LogbookEntry entry) {
    return Creator().create(entry) ? entry.description : "";
}

template <typename Creator>
std::string known(const Code& code) {
    return Creator().containsId(code) ? "known" : "unknown";
}

template <typename Converter>
std::string converted(typename Converter::type value) {
    const Json::Value json = Converter::fromValToJsonValue(value);
    const bool returned = Converter::fromJsonToVal(json) == value;
    return json.asString() + (returned ? " and back" : " and not back");
}

template <typename Value>
std::string written(const Value& value) {
    std::ostringstream stream;
    stream.exceptions(std::ios_base::badbit);
    stream << value;
    return stream.str();
}

// clang-format off
inline constexpr Operation operations[] = {
    {"createOn", Reads::Nothing, [] { return lgb::params::createOn(true); }},
    {"createWatt", Reads::Nothing, [] { return lgb::params::createWatt(true); }},
    {"createGroup", Reads::Nothing, [] { return lgb::params::createGroup(-2147483647); }},
    {"createFans", Reads::Nothing, [] { return lgb::params::createFans(true); }},
    {"createBusModule", Reads::Nothing, [] { return lgb::params::createBusModule(4294967295, 3); }},
    {"createVersion", Reads::Nothing, [] { return lgb::params::createVersion(word); }},
    {"createType", Reads::Nothing, [] { return lgb::params::createType(word); }},
    {"createValue", Reads::Nothing, [] { return lgb::params::createValue(word); }},
    {"createService", Reads::Nothing, [] { return lgb::params::createService(word); }},
    {"createBusModuleAndService", Reads::Nothing,
     [] { return lgb::params::createBusModuleAndService(1, 3, word); }},
    {"createOperatingClass", Reads::Nothing, [] { return lgb::params::createOperatingClass(OperatingClass::Step8); }},
    {"createPathAndOperatingClass", Reads::Nothing,
     [] { return lgb::params::createPathAndOperatingClass(word, OperatingClass::A); }},
    {"createOutputMode", Reads::Nothing, [] { return lgb::params::createOutputMode(OutputMode::Increased9); }},
    {"createPathAndOutputMode", Reads::Nothing,
     [] { return lgb::params::createPathAndOutputMode(word, OutputMode::Power); }},
    {"createInterlockMode", Reads::Nothing,
     [] { return lgb::params::createInterlockMode(InterlockMode::Automatic); }},
    {"createRoleWithNr", Reads::Nothing, [] { return lgb::params::createRoleWithNr(SystemConfigRole::Device, 5); }},
    {"createValueAndService", Reads::Nothing, [] { return lgb::params::createValueAndService(word, word); }},
    {"OutputModeStr of a named one", Reads::Nothing, [] { return lgb::params::OutputModeStr(OutputMode::Power); }},
    {"OutputModeStr of a number", Reads::Nothing, [] { return lgb::params::OutputModeStr(OutputMode::Increased9); }},
    {"OperatingClassStr of a named one", Reads::Nothing,
     [] { return lgb::params::OperatingClassStr(OperatingClass::AB); }},
    {"OperatingClassStr of a number", Reads::Nothing,
     [] { return lgb::params::OperatingClassStr(OperatingClass::Step8); }},

    {"ErrorTextCreator::create", Reads::Json, [] { return lgb::ErrorTextCreator().create(error, everything); }},
    {"WarningTextCreator::create", Reads::Json, [] { return lgb::WarningTextCreator().create(warning, everything); }},
    {"InfoTextCreator::create", Reads::Json, [] { return lgb::InfoTextCreator().create(info, everything); }},
    {"ErrorTextCreator::containsId", Reads::Nothing, [] { return known<lgb::ErrorTextCreator>(error); }},
    {"WarningTextCreator::containsId", Reads::Nothing, [] { return known<lgb::WarningTextCreator>(warning); }},
    {"InfoTextCreator::containsId", Reads::Nothing, [] { return known<lgb::InfoTextCreator>(info); }},
    {"containsId of an unknown id", Reads::Nothing,
     [] { return known<lgb::ErrorTextCreator>(Code(4711, LogbookEntryType::Error)); }},
    {"ErrorWarningTexts::getText", Reads::Json, [] { return lgb::ErrorWarningTexts().getText(warning, everything); }},
    {"systemBusErrorMsg", Reads::Json, [] { return lgb::systemBusErrorMsg("device", everything); }},
    {"invalidConfig", Reads::Json, [] { return lgb::invalidConfig(everything); }},
    {"getFanText", Reads::Json, [] { return lgb::getFanText(everything); }},
    {"interlock", Reads::Json, [] { return lgb::interlock(2, everything, true); }},
    {"outputMode", Reads::Json, [] { return lgb::outputMode(everything); }},
    {"operatingClass", Reads::Json, [] { return lgb::operatingClass(everything); }},
    {"createText of an error", Reads::Json, [] { return lgb::DescriptionCreator().createText(error, everything); }},
    {"createText of a warning", Reads::Json, [] { return lgb::DescriptionCreator().createText(warning, everything); }},
    {"createText of information", Reads::Json, [] { return lgb::DescriptionCreator().createText(info, everything); }},
    {"descriptionEnd", Reads::Nothing, [] { return lgb::descriptionEnd(LogbookEntryType::Error); }},

    {"DescriptionCreator::create", Reads::Json, [] { return described<lgb::DescriptionCreator>(coded()); }},
    {"DescriptionCreator::create, first generation", Reads::Json,
     [] { return described<lgb::DescriptionCreator>(ofFirstGeneration()); }},
    {"ServiceDescriptionCreator::create", Reads::Json,
     [] { return described<lgb::ServiceDescriptionCreator>(coded()); }},
    {"ServiceDescriptionCreator::create, first generation", Reads::Json,
     [] { return described<lgb::ServiceDescriptionCreator>(ofFirstGeneration()); }},
    {"ServiceDescriptionCreator::create, service only", Reads::Json,
     [] { return described<lgb::ServiceDescriptionCreator>(serviceOnly()); }},
    {"UnitDeviceDescriptionCreator::create", Reads::Nothing,
     [] { return lgb::UnitDeviceDescriptionCreator::create(coded()); }},
    {"getStr", Reads::Nothing, [] { return lgb::getStr(true, -2147483647); }},
    {"createString", Reads::Nothing, [] { return lgb::createString(word, word); }},

    {"OnOff", Reads::Json, [] { return lgb::commontexts::OnOff(everything); }},
    {"GroupNrExtern", Reads::Json, [] { return lgb::commontexts::GroupNrExtern(everything); }},
    {"Reduced", Reads::Nothing, [] { return lgb::commontexts::Reduced(LogbookEntryType::Warning); }},
    {"OutOfR", Reads::Nothing, [] { return lgb::commontexts::OutOfR(word); }},
    {"failed", Reads::Nothing, [] { return lgb::commontexts::failed(); }},
    {"Setting", Reads::Nothing, [] { return lgb::commontexts::Setting(word); }},
    {"ModuleOnBus", Reads::Json, [] { return lgb::commontexts::ModuleOnBus(everything); }},
    {"ForPd", Reads::Json, [] { return lgb::commontexts::ForPd(everything); }},
    {"FailedForPd", Reads::Json, [] { return lgb::commontexts::FailedForPd(everything); }},
    {"ForAmp", Reads::Json, [] { return lgb::commontexts::ForAmp(everything); }},
    {"FailedForAmp", Reads::Json, [] { return lgb::commontexts::FailedForAmp(everything); }},
    {"ForPab", Reads::Json, [] { return lgb::commontexts::ForPab(everything); }},
    {"FailedForPab", Reads::Json, [] { return lgb::commontexts::FailedForPab(everything); }},

    {"Entry", Reads::Nothing, [] { return lgb::Entry(error, word).details.params; }},
    {"Entry, service only", Reads::Nothing, [] { return serviceOnly().description; }},
    {"createBaseEntry", Reads::Nothing, [] { return written<LogbookEntry>(lgb::createBaseEntry()); }},
    {"LogbookEntryCreator::create", Reads::Nothing,
     [] { return written<LogbookEntry>(lgb::LogbookEntryCreator::create(coded())); }},
    {"LogbookEntryCreator::createServiceOnly", Reads::Nothing, [] {
         const ServiceCode code(LogbookEntryType::Info);
         return written<LogbookEntry>(lgb::LogbookEntryCreator::createServiceOnly(word, code));
     }},
    {"<< of a record", Reads::Nothing, [] { return written(coded()); }},
    {"<< of an entry", Reads::Nothing, [] { return written(lgb::Entry(error, everything)); }},
    {"<< of a code", Reads::Nothing, [] { return written(error); }},
    {"entryStr", Reads::Nothing, [] { return lgb::entryStr(coded()); }},

    {"LogbookEntryConverter", Reads::Json, [] {
         const std::string text = JsonUtility::toJsonString(LogbookEntryConverter::fromValToJsonValue(coded()));
         return written(LogbookEntryConverter::fromJsonToVal(JsonUtility::toJsonValue(text)));
     }},
    {"LogbookEntryDetailsConverter", Reads::Nothing, [] {
         const Json::Value json = LogbookEntryDetailsConverter::fromValToJsonValue(coded().details);
         return LogbookEntryDetailsConverter::fromJsonToVal(json).params;
     }},
    {"LogbookEntryTypeConverter", Reads::Nothing,
     [] { return converted<LogbookEntryTypeConverter>(LogbookEntryType::Error); }},
    {"GenerationConverter", Reads::Nothing, [] { return converted<GenerationConverter>(Generation::Heron); }},
    {"OperatingClassConverter", Reads::Nothing,
     [] { return converted<OperatingClassConverter>(OperatingClass::Step8); }},
    {"OutputModeConverter", Reads::Nothing, [] { return converted<OutputModeConverter>(OutputMode::Increased9); }},
    {"InterlockModeConverter", Reads::Nothing,
     [] { return converted<InterlockModeConverter>(InterlockMode::Automatic); }},
    {"SystemConfigRoleConverter", Reads::Nothing,
     [] { return converted<SystemConfigRoleConverter>(SystemConfigRole::Device); }},
    {"TypeProductConverter", Reads::Nothing, [] { return converted<TypeProductConverter>(TypeProduct::Kestrel); }},
    {"ValueConverter", Reads::Json,
     [] { return tqbase2::nsa::zel::logbook::params::ValueConverter::fromJsonToVal(everything); }},
    {"JsonUtility", Reads::Json, [] { return JsonUtility::toJsonString(JsonUtility::toJsonValue(everything)); }},
    {"StringConverter", Reads::Nothing, [] {
         using tqbase2::cia::StringConverter;
         return StringConverter::fromJsonToVal(StringConverter::fromValToJsonValue(word));
     }},

    {"createStr", Reads::Nothing, [] { return businesslogic::zel::createStr(word, ' ', true, 18446744073709551615U); }},
    {"toStringFixed", Reads::Nothing, [] { return businesslogic::zel::toStringFixed<double, 3, true>(1e20); }},
    {"onOffStr", Reads::Nothing, [] { return businesslogic::zel::onOffStr(true); }},
};
// clang-format on

}  // namespace texts
