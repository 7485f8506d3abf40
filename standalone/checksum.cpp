#include "checksum.h"

#include <zlib.h>

#include <array>
#include <cstddef>

namespace standalone {

namespace {

class Crc32 {
public:
    /// The same bytes on every machine.
    void add(std::uint64_t number) {
        std::array<unsigned char, sizeof number> bytes{};
        for (unsigned char& byte : bytes) {
            byte = static_cast<unsigned char>(number);
            number >>= 8;
        }
        add(bytes.data(), bytes.size());
    }

    /// Its length first: a byte that moves from one text to the next is a change.
    void add(std::string_view text) {
        add(std::uint64_t{text.size()});
        add(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    }

    std::uint32_t value() const { return static_cast<std::uint32_t>(state); }

private:
    void add(const unsigned char* bytes, std::size_t size) { state = crc32_z(state, bytes, size); }

    uLong state = 0;
};

}  // namespace

std::uint32_t checksum(const NumberedRecord& record) {
    Crc32 crc;
    crc.add(static_cast<std::uint64_t>(record.number));
    crc.add(static_cast<std::uint64_t>(record.seconds));
    crc.add(static_cast<std::uint64_t>(record.nanoseconds));
    crc.add(record.time);
    crc.add(record.json);
    return crc.value();
}

}  // namespace standalone
