#pragma once

#include <nsa/zel/enums/LogbookEntryType.h>
#include <nsa/zel/export.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <cstdint>
#include <iosfwd>

/// The short names of messages, "E14".
namespace lgb::code {

/// Identifies a message: an id that is unique within its type. A value.
class TQZEL_EXPORT Code {
public:
    /// @param id of the message; 0 is kept for entries without a code
    /// @param type kept as it is, also a number outside the enumeration
    Code(unsigned int id, tqbase2::nsa::zel::enums::LogbookEntryType type);
    Code(const Code&) = default;             ///< Equal in id and type.
    Code& operator=(const Code&) = default;  ///< Takes over id and type.
    virtual ~Code();

    /// Unique within the type; docs/messages.md lists those that have a message.
    unsigned int id() const { return number; }

    /// Which of the message tables the id belongs to.
    tqbase2::nsa::zel::enums::LogbookEntryType type() const { return kind; }

    /// Whether the entry carries this code: same type, and the same id in all 64 bits.
    bool isEntry(const tqbase2::nsa::zel::structs::LogbookEntry& entry) const;

private:
    std::uint32_t number;
    tqbase2::nsa::zel::enums::LogbookEntryType kind;
};

/// The code of a service-only entry. Only with id 0 is the entry one that the customer logbook leaves out.
class TQZEL_EXPORT ServiceCode : public Code {
public:
    /// As Code is made; with an id other than 0 it is an ordinary code.
    using Code::Code;

    /// Has id 0.
    explicit ServiceCode(tqbase2::nsa::zel::enums::LogbookEntryType type);
    ServiceCode(const ServiceCode&) = default;             ///< Equal in id and type.
    ServiceCode& operator=(const ServiceCode&) = default;  ///< Takes over id and type.
    ~ServiceCode() override;
};

/// Writes the short form: the type's letter (none for a type outside the enumeration), then the id unless it is 0;
/// "E282", "I20", "W".
TQZEL_EXPORT std::ostream& operator<<(std::ostream& stream, const Code& code);

}  // namespace lgb::code
