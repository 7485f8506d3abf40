#pragma once

#include <string>

namespace lgb {

namespace code {
class Code;
}

class ParameterRecord;

/// The text creators' work over a record that is parsed once for the whole description.
/// Each answers "unknown entry" for an id without a message.

std::string infoText(const code::Code& code, const ParameterRecord& params);
std::string warningText(const code::Code& code, const ParameterRecord& params);
std::string errorText(const code::Code& code, const ParameterRecord& params);

/// The texts that errors and warnings share. Parameters without a readable module and bus fail for every id.
std::string errorWarningText(const code::Code& code, const ParameterRecord& params);

}  // namespace lgb
