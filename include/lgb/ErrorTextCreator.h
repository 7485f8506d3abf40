#pragma once

#include <lgb/BaseTextCreator.h>
#include <nsa/zel/export.h>

#include <string>

namespace lgb {

/// The messages of errors, those that warnings share included.
class TQZEL_EXPORT ErrorTextCreator : public BaseTextCreator {
public:
    std::string create(const code::Code& code, const std::string& params) const override;

    ~ErrorTextCreator() override;
};

/// "Interrupted System Bus (X102) before unit 7"
/// @param where names the kind of place, "unit" or "device"
/// @param params reads "value"
TQZEL_EXPORT std::string systemBusErrorMsg(const std::string& where, const std::string& params);

/// "Invalid configuration for device 2"
/// @param params reads "role" and "nr"
TQZEL_EXPORT std::string invalidConfig(const std::string& params);

}  // namespace lgb
