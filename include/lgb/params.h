#pragma once

#include <nsa/zel/enums/InterlockMode.h>
#include <nsa/zel/enums/OperatingClass.h>
#include <nsa/zel/enums/OutputMode.h>
#include <nsa/zel/enums/SystemConfigRole.h>
#include <nsa/zel/export.h>

#include <string>

/// Builders of parameter records: each returns the text of one JSON object, to be put into an entry's `params`. The
/// keys and the enum spellings are a persistent format. All are safe from any thread.
///
/// Numbers and texts are stored whole and shown as they are. A builder that takes an enum throws
/// tqbase2::system::LogicError for a number outside the enumeration.
namespace lgb::params {

/// @param on what was to be set, shown in the platform's words for on and off
TQZEL_EXPORT std::string createOn(bool on);

/// @param watt whether power is shown in watt, else in dBm
TQZEL_EXPORT std::string createWatt(bool watt);

/// @param group counts from 0; it is shown counting from 1
TQZEL_EXPORT std::string createGroup(int group);

/// @param ok stored as "ok"; the fan warning names fan 0 as the working one when true, fan 1 when false
TQZEL_EXPORT std::string createFans(bool ok);

/// @param bus the module is on
/// @param module number of the amplifier, power detector or power supply on that bus
TQZEL_EXPORT std::string createBusModule(unsigned int bus, unsigned int module);

/// @param version of a firmware
TQZEL_EXPORT std::string createVersion(const std::string& version);

/// @param type of a product
TQZEL_EXPORT std::string createType(const std::string& type);

/// @param value in the unit in which it is to be read; some messages name a bus, unit or device by it
TQZEL_EXPORT std::string createValue(const std::string& value);

/// @param service the detail that the service logbook shows behind the description
TQZEL_EXPORT std::string createService(const std::string& service);

/// What createBusModule and createService hold, in one record.
TQZEL_EXPORT std::string createBusModuleAndService(unsigned int bus, unsigned int module, const std::string& service);

/// @param operatingClass shown as OperatingClassStr says it
TQZEL_EXPORT std::string createOperatingClass(tqbase2::nsa::zel::enums::OperatingClass operatingClass);

/// @param path name of the RF path, such as "A"
/// @param operatingClass shown as OperatingClassStr says it
TQZEL_EXPORT std::string createPathAndOperatingClass(const std::string& path,
                                                     tqbase2::nsa::zel::enums::OperatingClass operatingClass);

/// @param outputMode shown as OutputModeStr says it
TQZEL_EXPORT std::string createOutputMode(tqbase2::nsa::zel::enums::OutputMode outputMode);

/// @param path name of the RF path, such as "A"
/// @param outputMode shown as OutputModeStr says it
TQZEL_EXPORT std::string createPathAndOutputMode(const std::string& path,
                                                 tqbase2::nsa::zel::enums::OutputMode outputMode);

/// @param interlockMode shown in its spelling, "interactive" or "automatic"
TQZEL_EXPORT std::string createInterlockMode(tqbase2::nsa::zel::enums::InterlockMode interlockMode);

/// @param role what is configured, a unit or a device
/// @param nr number of the unit or device
TQZEL_EXPORT std::string createRoleWithNr(tqbase2::nsa::zel::enums::SystemConfigRole role, unsigned int nr);

/// What createValue and createService hold, in one record.
TQZEL_EXPORT std::string createValueAndService(const std::string& value, const std::string& service);

/// What descriptions call an output mode: "High VSWR", "High Power", else the decimal number; never throws.
TQZEL_EXPORT std::string OutputModeStr(tqbase2::nsa::zel::enums::OutputMode outputMode);

/// What descriptions call an operating class: "AB", "A", else the decimal number; never throws.
TQZEL_EXPORT std::string OperatingClassStr(tqbase2::nsa::zel::enums::OperatingClass operatingClass);

}  // namespace lgb::params
