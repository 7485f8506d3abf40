#include <lgb/UnitDeviceDescriptionCreator.h>

#include <cstdint>

namespace lgb {

namespace {

/// The text of a unit or device number: its low 32 bits, signed; empty for none.
std::string numberText(std::int64_t number) {
    return getStr(number >= 0, static_cast<std::int32_t>(static_cast<std::uint32_t>(number)));
}

}  // namespace

std::string UnitDeviceDescriptionCreator::create(const tqbase2::nsa::zel::structs::LogbookEntry& entry) {
    const auto& [unit, device, params, generation] = entry.details;
    if (device < 0 && unit < 0) {
        return "";
    }
    return createString(numberText(device), numberText(unit));
}

std::string getStr(bool valid, int value) {
    return valid ? std::to_string(value) : "";
}

std::string createString(const std::string& device, const std::string& unit) {
    if (device.empty()) {
        return "Unit " + unit + ": ";
    }
    if (unit.empty()) {
        return "Device " + device + ": ";
    }
    return "Device " + device + ", Unit " + unit + ": ";
}

}  // namespace lgb
