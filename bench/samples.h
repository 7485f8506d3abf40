#pragma once

#include <lgb/Entry.h>
#include <lgb/params.h>
#include <lgb/timestamp.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// An entry that needs its parameters to be shown, and how it is shown.
struct Sample {
    lgb::Entry entry;
    std::vector<std::string_view> pieces;  ///< of its description, as a program would append them
    std::string_view detail = {};          ///< what the service logbook shows behind it, the blank included
    std::string json = tqbase2::system::JsonUtility::toJsonString(
        tqbase2::nsa::zel::structs::LogbookEntryConverter::fromValToJsonValue(entry));  ///< as it is stored
};

namespace detail {

using lgb::code::Code;
using tqbase2::nsa::zel::enums::InterlockMode;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::enums::OperatingClass;

inline lgb::Entry fromUnit(lgb::Entry entry, std::int64_t unit, std::int64_t device) {
    entry.details.unit = unit;
    entry.details.device = device;
    return entry;
}

}  // namespace detail

/// Logbooks are filled with these in turn; a page of 20 holds each as often as any other, wherever it starts.
inline const std::vector<Sample>& samples() {
    using namespace detail;
    static const std::vector<Sample> all{
        {{Code(14, LogbookEntryType::Error), lgb::params::createBusModuleAndService(1, 3, "(+1.2 dB)")},
         {"Setting attenuation failed for amplifier ", "3", " on bus ", "1", "!"},
         " (+1.2 dB)"},
        {{Code(3, LogbookEntryType::Error), lgb::params::createBusModule(2, 7)},
         {"Temperature below average for amplifier ", "7", " on bus ", "2", "!"}},
        {fromUnit({Code(6, LogbookEntryType::Warning),
                   lgb::params::createBusModuleAndService(1, 3, "(3.1 A, expected 4.8 A)")},
                  1, 2),
         {"Device ", "2", ", Unit ", "1", ": ", "Too low current for amplifier ", "3", " on bus ", "1",
          " reduced RF Power", "!"},
         " (3.1 A, expected 4.8 A)"},
        {{Code(201, LogbookEntryType::Info), lgb::params::createPathAndOperatingClass("A", OperatingClass::AB)},
         {"Operating Class of RF-Path \"", "A", "\" changed to ", "AB", "."}},
        {{Code(127, LogbookEntryType::Info), lgb::params::createInterlockMode(InterlockMode::Automatic)},
         {"Interlock 1 (", "automatic", ") was opened", "."}},
    };
    return all;
}

inline const Sample& sampleOf(std::uint64_t number) {
    return samples()[static_cast<std::size_t>(number % samples().size())];
}

/// The description of a sample by plain appends.
inline std::string textOf(const Sample& sample, bool service) {
    std::string text;
    for (const std::string_view piece : sample.pieces) {
        text += piece;
    }
    if (service) {
        text += sample.detail;
    }
    return text;
}

/// When all samples were recorded.
inline lgb::timestamp::Timestamp sampleTime() {
    return {1795284131, 123456789, "2026-11-21 19:02:11 +0100"};
}

}  // namespace bench
