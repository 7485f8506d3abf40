#include <lgb/Code.h>
#include <nsa/zel/enums/spelling.h>

#include <ostream>
#include <string>

namespace lgb::code {

namespace enums = tqbase2::nsa::zel::enums;

Code::Code(unsigned int id, enums::LogbookEntryType type) : number(id), kind(type) {}

Code::~Code() = default;

bool Code::isEntry(const tqbase2::nsa::zel::structs::LogbookEntry& entry) const {
    return entry.code == number && entry.type == kind;
}

ServiceCode::ServiceCode(enums::LogbookEntryType type) : Code(0, type) {}

ServiceCode::~ServiceCode() = default;

std::ostream& operator<<(std::ostream& stream, const Code& code) {
    enums::write(stream, enums::spelling(enums::logbookEntryTypeSpellings, code.type()));
    if (code.id() != 0) {
        stream << std::to_string(code.id());
    }
    return stream;
}

}  // namespace lgb::code
