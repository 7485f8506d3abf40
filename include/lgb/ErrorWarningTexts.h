#pragma once

#include <lgb/Code.h>
#include <nsa/zel/export.h>

#include <string>

namespace lgb {

/// The messages that errors and warnings have in common. No state: may be used from any thread.
class TQZEL_EXPORT ErrorWarningTexts {
public:
    /// @param code its id chooses the message; some say " reduced RF Power" when its type is Warning
    /// @param params text of the parameter record; reads "bus" and "module", for an unknown id too
    /// @return "unknown entry" for an id without a message
    /// @throws what the platform's JSON parser throws, and Json::LogicError for members that are not numbers
    std::string getText(const code::Code& code, const std::string& params) const;
};

}  // namespace lgb
