#pragma once

#include <lgb/BaseTextCreator.h>
#include <nsa/zel/export.h>

#include <string>

namespace lgb {

/// The messages of warnings, those that errors share included.
class TQZEL_EXPORT WarningTextCreator : public BaseTextCreator {
public:
    std::string create(const code::Code& code, const std::string& params) const override;

    ~WarningTextCreator() override;
};

/// "Detected defective fan 1 (with fan 0 ok)"
/// @param params reads "ok": true names fan 0 as the working one
TQZEL_EXPORT std::string getFanText(const std::string& params);

}  // namespace lgb
