#pragma once

#include <lgb/BaseTextCreator.h>
#include <nsa/zel/export.h>

#include <string>

namespace lgb {

/// The messages of information entries. Looks at the id alone.
class TQZEL_EXPORT InfoTextCreator : public BaseTextCreator {
public:
    std::string create(const code::Code& code, const std::string& params) const override;

    ~InfoTextCreator() override;
};

/// "Interlock 1 (automatic) was closed"
/// @param number of the interlock; the device has 1 and 2
/// @param params reads "interlockMode"
/// @param opened whether it was opened, else closed
TQZEL_EXPORT std::string interlock(unsigned int number, const std::string& params, bool opened);

/// "Output Mode of RF-Path "A" changed to High VSWR"
/// @param params reads "path" and "outputMode"
TQZEL_EXPORT std::string outputMode(const std::string& params);

/// "Operating Class of RF-Path "A" changed to AB"
/// @param params reads "path" and "operatingClass"
TQZEL_EXPORT std::string operatingClass(const std::string& params);

}  // namespace lgb
