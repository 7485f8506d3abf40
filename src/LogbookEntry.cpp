#include <nsa/zel/enums/spelling.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <ostream>
#include <string>

namespace enums = tqbase2::nsa::zel::enums;

// Numbers go through std::to_string: whatever the stream is set to, they are plain decimal.
std::ostream& std::operator<<(std::ostream& stream, const tqbase2::nsa::zel::structs::LogbookEntry& entry) {
    return stream << "type: " << enums::spelling(enums::logbookEntryTypeSpellings, entry.type)
                  << " - code: " << std::to_string(entry.code) << " - description: " << entry.description
                  << " - details: unit: " << std::to_string(entry.details.unit)
                  << " - device: " << std::to_string(entry.details.device) << " - params: " << entry.details.params
                  << " - generation: " << enums::spelling(enums::generationSpellings, entry.details.generation);
}
