#pragma once

#include "ParameterRecord.h"

#include <string>

/// The fragments of lgb/commontexts.h over a record that is parsed once for all of them.
namespace lgb::commontexts {

inline constexpr const char* reduced = " reduced RF Power";

std::string OnOff(const ParameterRecord& params);
std::string GroupNrExtern(const ParameterRecord& params);
std::string ModuleOnBus(const ParameterRecord& params);
std::string ForPd(const ParameterRecord& params);
std::string FailedForPd(const ParameterRecord& params);
std::string ForAmp(const ParameterRecord& params);
std::string FailedForAmp(const ParameterRecord& params);
std::string ForPab(const ParameterRecord& params);
std::string FailedForPab(const ParameterRecord& params);

}  // namespace lgb::commontexts
