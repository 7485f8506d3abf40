#pragma once

#include <nsa/zel/enums/LogbookEntryType.h>
#include <nsa/zel/export.h>

#include <string>

/// The fragments that messages are put together from. Blanks stand where a message needs them and nowhere else: look
/// at each fragment before joining it.
///
/// `params` is the text of a parameter record; a missing member reads as 0 or false. What needs it throws what the
/// platform's JSON parser throws, and Json::LogicError for a member of another JSON type. Safe from any thread.
namespace lgb::commontexts {

TQZEL_EXPORT extern const char* const forPdStr;   ///< "for power detector"
TQZEL_EXPORT extern const char* const failedStr;  ///< "failed"
TQZEL_EXPORT extern const char* const forAmpStr;  ///< "for amplifier"
TQZEL_EXPORT extern const char* const forPabStr;  ///< "for power supply"
TQZEL_EXPORT extern const char* const rfPathStr;  ///< "RF-Path"

/// The platform's word for member "on".
TQZEL_EXPORT std::string OnOff(const std::string& params);

/// Member "group" plus 1: stored groups count from 0, shown ones from 1.
TQZEL_EXPORT std::string GroupNrExtern(const std::string& params);

/// " reduced RF Power" for a warning, else empty.
TQZEL_EXPORT std::string Reduced(tqbase2::nsa::zel::enums::LogbookEntryType type);

/// "VDD out of range" for "VDD".
TQZEL_EXPORT std::string OutOfR(const std::string& what);

/// " failed"
TQZEL_EXPORT std::string failed();

/// "Setting POTI " for "POTI ", "Setting" for an empty text.
TQZEL_EXPORT std::string Setting(const std::string& what);

/// "3 on bus 1"
TQZEL_EXPORT std::string ModuleOnBus(const std::string& params);

/// "for power detector 3 on bus 1"
TQZEL_EXPORT std::string ForPd(const std::string& params);

/// "failed for power detector 3 on bus 1"
TQZEL_EXPORT std::string FailedForPd(const std::string& params);

/// "for amplifier 3 on bus 1"
TQZEL_EXPORT std::string ForAmp(const std::string& params);

/// "failed for amplifier 3 on bus 1"
TQZEL_EXPORT std::string FailedForAmp(const std::string& params);

/// "for power supply 3 on bus 1"
TQZEL_EXPORT std::string ForPab(const std::string& params);

/// "failed for power supply 3 on bus 1"
TQZEL_EXPORT std::string FailedForPab(const std::string& params);

}  // namespace lgb::commontexts
