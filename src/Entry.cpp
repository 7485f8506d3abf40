#include <lgb/Entry.h>

#include <cstdint>
#include <ostream>

namespace lgb {

namespace enums = tqbase2::nsa::zel::enums;
using tqbase2::nsa::zel::structs::LogbookEntry;

Entry::Entry(const code::Code& message) {
    code = message.id();
    type = message.type();
    details.generation = enums::Generation::Heron;
    details.unit = -1;
    details.device = -1;
}

Entry::Entry(const code::Code& message, const std::string& text) : Entry(message) {
    (isServiceOnly(*this) ? description : details.params) = text;
}

bool isServiceOnly(const LogbookEntry& entry) {
    return static_cast<std::uint32_t>(entry.code) == 0;
}

std::ostream& operator<<(std::ostream& stream, const Entry& entry) {
    return stream << static_cast<const LogbookEntry&>(entry);
}

}  // namespace lgb
