#include "checksum.h"

#include <boost/crc.hpp>

#include <string>

namespace standalone {

namespace {

/// The same bytes on every machine.
void process(boost::crc_32_type& crc, std::uint64_t number) {
    for (int shift = 0; shift < 64; shift += 8) {
        crc.process_byte(static_cast<unsigned char>(number >> shift));
    }
}

/// Its length first: a byte that moves from one text to the next is a change.
void process(boost::crc_32_type& crc, const std::string& text) {
    process(crc, std::uint64_t{text.size()});
    crc.process_bytes(text.data(), text.size());
}

}  // namespace

std::uint32_t checksum(std::int64_t number, const lgb::DatabaseRecord& record) {
    boost::crc_32_type crc;
    process(crc, static_cast<std::uint64_t>(number));
    process(crc, static_cast<std::uint64_t>(record.timestamp.seconds));
    process(crc, static_cast<std::uint64_t>(record.timestamp.nanoseconds));
    process(crc, record.timestamp.text);
    process(crc, record.json);
    return static_cast<std::uint32_t>(crc.checksum());
}

}  // namespace standalone
