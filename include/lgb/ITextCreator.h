#pragma once

#include <lgb/Code.h>
#include <nsa/zel/export.h>

#include <string>

namespace lgb {

/// Puts codes of one entry type into words. Text creators have no state and may be used from any thread.
class TQZEL_EXPORT ITextCreator {
public:
    /// The message of a code, without unit and device in front and without closing punctuation.
    /// @param code its id alone chooses the message, whatever its type; that decides only over " reduced RF Power"
    /// @param params text of the entry's parameter record
    /// @return "unknown entry" for an id that this creator does not know
    /// @throws what the platform's JSON parser throws, Json::LogicError or tqbase2::system::LogicError when the message
    ///         needs parameters that can't be read
    virtual std::string create(const code::Code& code, const std::string& params) const = 0;

    /// Whether this creator has a message for the code. Costs the making of one text; never throws a std::exception.
    virtual bool containsId(const code::Code& code) const = 0;

    virtual ~ITextCreator();
};

}  // namespace lgb
