#pragma once

#include <lgb/Code.h>
#include <nsa/zel/export.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <string>

namespace lgb {

class ParameterRecord;

/// Makes the descriptions of the customer logbook. No state: concurrent calls need an entry each, nothing more.
class TQZEL_EXPORT DescriptionCreator {
public:
    virtual ~DescriptionCreator();

    /// Replaces the entry's description: unit and device, the message of its code, "." or "!". An entry of the first
    /// generation (Kestrel) brings its message along in its parameters instead.
    /// @return whether the entry is to be shown; false for one without a code, and for one whose parameters can't be
    ///         read, which is logged at level 4; the description is then unfinished
    /// @throws exceptions that do not derive from tqbase2::system::Exception, such as Json::LogicError
    virtual bool create(tqbase2::nsa::zel::structs::LogbookEntry& entry);

    /// The message of a code alone, "unknown entry" for one that has none.
    /// @throws what ITextCreator::create throws
    std::string createText(const code::Code& code, const std::string& params) const;

protected:
    /// What `create` does, on an entry whose parameters others read as well.
    /// @param entry whose description is replaced
    /// @param params made from the entry's own parameter text
    TQZEL_INTERNAL bool describe(tqbase2::nsa::zel::structs::LogbookEntry& entry, const ParameterRecord& params);

private:
    TQZEL_INTERNAL bool createZel(tqbase2::nsa::zel::structs::LogbookEntry& entry, const ParameterRecord& params);
    TQZEL_INTERNAL bool createKestrel(tqbase2::nsa::zel::structs::LogbookEntry& entry, const ParameterRecord& params);
};

/// What ends a description: "." for information, "!" for all else.
TQZEL_EXPORT std::string descriptionEnd(tqbase2::nsa::zel::enums::LogbookEntryType type);

}  // namespace lgb
