#pragma once

#include <nsa/zel/export.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <string>

namespace lgb {

/// Says in front of a description which device and unit an entry concerns. Safe from any thread.
class TQZEL_EXPORT UnitDeviceDescriptionCreator {
public:
    /// "Device 3, Unit 12: ", "Device 3: ", "Unit 12: ", or empty when both are negative. Numbers are shown by their
    /// low 32 bits, signed.
    static std::string create(const tqbase2::nsa::zel::structs::LogbookEntry& entry);
};

/// The decimal text of `value`; empty when not `valid`.
TQZEL_EXPORT std::string getStr(bool valid, int value);

/// Joins the texts of two numbers; an empty device is left out, and so is an empty unit behind a device.
TQZEL_EXPORT std::string createString(const std::string& device, const std::string& unit);

}  // namespace lgb
