#include <lgb/Code.h>
#include <lgb/entryLog.h>
#include <nsa/zel/enums/spelling.h>
#include <nsa/zel/logging.h>

#include <cstdint>
#include <sstream>

namespace lgb {

namespace enums = tqbase2::nsa::zel::enums;
namespace logging = tqbase2::nsa::zel::logging;
using tqbase2::nsa::zel::structs::LogbookEntry;

namespace {

unsigned int levelOf(enums::LogbookEntryType type) {
    switch (type) {
        case enums::LogbookEntryType::Info:
            return logging::information;
        case enums::LogbookEntryType::Warning:
            return logging::warning;
        default:
            return logging::error;
    }
}

}  // namespace

std::string entryStr(const LogbookEntry& entry) {
    const auto& [unit, device, params, generation] = entry.details;
    std::ostringstream text;
    text.exceptions(std::ios_base::badbit);  // else running out of memory would only cut the text
    text << code::Code(static_cast<std::uint32_t>(entry.code), entry.type);
    if (device >= 0) {
        text << " device=" << std::to_string(device);
    }
    if (unit >= 0) {
        text << " unit=" << std::to_string(unit);
    }
    if (generation != enums::Generation::Heron) {
        text << ' ' << enums::spelling(enums::generationSpellings, generation);
    }
    if (!entry.description.empty()) {
        text << " \"" << entry.description << '"';
    }
    if (!params.empty()) {
        text << ' ' << params;
    }
    return text.str();
}

void entryLog(const LogbookEntry& entry) {
    const std::string text = entryStr(entry);
    const unsigned int level = levelOf(entry.type);
    if (tqbase2::system::log::detail::isEnabled(level, logging::channel)) {
        tqbase2::system::log::detail::log(level, logging::channel, text);
    }
}

}  // namespace lgb
