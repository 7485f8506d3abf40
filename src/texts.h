#pragma once

#include <string>

namespace lgb {

namespace code {
class Code;
}

class MessageTable;
class ParameterRecord;

MessageTable infoMessages();
MessageTable warningMessages();
MessageTable errorMessages();

/// The messages that errors and warnings share, where they have none of their own.
MessageTable sharedMessages();

/// The text creators' work over a record that is parsed once for the whole description.
/// Each answers "unknown entry" for an id without a message.

std::string infoText(const code::Code& code, const ParameterRecord& params);
std::string warningText(const code::Code& code, const ParameterRecord& params);
std::string errorText(const code::Code& code, const ParameterRecord& params);

/// The texts that errors and warnings share. Parameters without a readable module and bus fail for every id.
std::string errorWarningText(const code::Code& code, const ParameterRecord& params);

}  // namespace lgb
